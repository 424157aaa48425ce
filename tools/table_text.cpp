// SPDX-License-Identifier: Apache-2.0
#include "cli/terminal_text.hpp"
#include "screen.hpp"

#include <string.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace morvath::tools
{
namespace
{

constexpr auto missing = "-";
constexpr std::size_t widestCell = 32;
constexpr std::size_t widestCellOfAll = 200;

constexpr std::pair<std::string_view, std::string_view> unitSigns[]{
    {"DegreesC", "°C"}, {"RPMS", "RPM"},       {"Volts", "V"},
    {"Amperes", "A"},   {"Watts", "W"},        {"Percent", "%"},
    {"Hertz", "Hz"},    {"Joules", "J"},       {"LPM", "l/min"},
    {"Meters", "m"},    {"Pascals", "Pa"},     {"PercentRH", "%RH"},
    {"Radians", "rad"}, {"AmpereHours", "Ah"},
};

constexpr std::array sizeUnits{"KiB", "MiB", "GiB", "TiB", "PiB"};

/** The sign of a unit, such as "°C" for "DegreesC". */
std::string signOf(const std::string& unit)
{
    const auto* found = std::ranges::find_if(
        unitSigns, [&unit](const auto& one) { return one.first == unit; });
    return std::string(found == std::end(unitSigns) ? unit : found->second);
}

std::string withUnit(const std::string& text, const std::string& unit)
{
    const auto number = numberIn(text);
    std::size_t size = std::ranges::find(sizeUnits, unit) - sizeUnits.begin();
    const auto isSize = size < sizeUnits.size();
    if (unit.empty() || !number)
    {
        return unit.empty() ? text : text + ' ' + unit;
    }
    // What nothing can have none of: the socket is empty.
    if (*number == 0 && (isSize || unit == "MHz" || unit == "Gbit/s"))
    {
        return missing;
    }
    if (!isSize)
    {
        return text + ' ' + unit;
    }
    // In the largest unit of which there is more than one.
    auto shown = *number;
    for (; shown >= 1024 && size + 1 < sizeUnits.size(); ++size)
    {
        shown /= 1024;
    }
    std::array<char, 400> digits;
    std::snprintf(digits.data(), digits.size(), "%.1f", shown);
    return numberText(digits.data()) + ' ' + sizeUnits.at(size);
}

bool isNumeric(Columns columns, const std::vector<Cells>& rows,
               std::size_t place)
{
    const auto& column = columns[place];
    return column.form == Form::number || !column.unit.empty() ||
           std::ranges::any_of(rows, [place](const Cells& row) {
               return std::holds_alternative<int64_t>(row[place]);
           });
}

/** Leaves out the least columns until the rest fits; how many. */
std::size_t fit(std::vector<std::size_t>& shown, Columns columns,
                const std::vector<std::size_t>& widths, std::size_t width)
{
    const auto isTooWide = [&] {
        std::size_t sum = 0;
        for (const auto place : shown)
        {
            sum += widths[place] + (sum > 0 ? 2 : 0);
        }
        return sum > width;
    };
    std::size_t left = 0;
    for (; width > 0 && shown.size() > 1 && isTooWide(); ++left)
    {
        // Of equals the last one.
        const auto least = std::ranges::max_element(
            shown.rbegin(), shown.rend(), {},
            [columns](std::size_t place) { return columns[place].rank; });
        if (columns[*least].rank == always)
        {
            break;
        }
        shown.erase(std::next(least).base());
    }
    return left;
}

} // namespace

std::string numberText(const std::string& text)
{
    if (!numberIn(text))
    {
        return {};
    }
    const auto end = text.find_last_not_of('0');
    return text.find('.') == text.npos
               ? text
               : text.substr(0, text[end] == '.' ? end : end + 1);
}

std::string cellText(Columns columns, const Cells& cells, std::size_t column)
{
    auto text = textOf(cells[column]);
    if (columns[column].form == Form::number)
    {
        text = numberText(text);
    }
    if (text.empty() || text == missing)
    {
        return missing;
    }
    const auto next = column + 1;
    const auto hasUnit =
        next < columns.size() && columns[next].form == Form::unit;
    return withUnit(text, hasUnit ? signOf(textOf(cells[next]))
                                  : std::string(columns[column].unit));
}

Texts textLines(Columns columns, const std::vector<Cells>& rows,
                const Look& look, RowColour colourOf)
{
    std::vector<std::size_t> shown;
    std::vector<Texts> texts(rows.size() + look.withTitles);
    for (std::size_t place = 0; place < columns.size(); ++place)
    {
        const auto& column = columns[place];
        if (column.form != Form::unit && (column.rank < seldom || look.isWide))
        {
            shown.push_back(place);
        }
        if (look.withTitles)
        {
            texts.front().emplace_back(column.title);
        }
        for (std::size_t row = 0; row < rows.size(); ++row)
        {
            texts[row + look.withTitles].push_back(
                cli::visible(cellText(columns, rows[row], place),
                             look.isWide ? widestCellOfAll : widestCell));
        }
    }
    const auto left =
        look.isWide ? 0 : fit(shown, columns, widthsOf(texts), look.width);
    std::string sides;
    for (const auto place : shown)
    {
        sides += isNumeric(columns, rows, place) ? 'r' : 'l';
    }
    for (auto& row : texts)
    {
        Texts kept;
        for (const auto place : shown)
        {
            kept.push_back(std::move(row[place]));
        }
        row = std::move(kept);
    }
    auto lines = inColumns(texts, sides);
    for (std::size_t line = 0; line < lines.size(); ++line)
    {
        const auto isTitle = look.withTitles && line == 0;
        const auto colour = isTitle    ? Colour::bold
                            : colourOf ? colourOf(rows[line - look.withTitles])
                                       : Colour::none;
        lines[line] = coloured(lines[line], colour, look);
    }
    if (left > 0 && look.withTitles)
    {
        lines.push_back("(" + std::to_string(left) +
                        (left == 1 ? " column" : " columns") +
                        " more: enlarge the window, or --wide)");
    }
    return lines;
}

Texts blockLines(Columns columns, const std::vector<Cells>& rows)
{
    std::vector<Texts> texts;
    for (const auto& row : rows)
    {
        if (!texts.empty())
        {
            texts.emplace_back();
        }
        for (std::size_t place = 0; place < columns.size(); ++place)
        {
            texts.push_back(
                {std::string(columns[place].title) + ':',
                 cli::visible(cellText(columns, row, place), widestCellOfAll)});
        }
    }
    return inColumns(texts, "", " ");
}

std::vector<Cells> inNaturalOrder(std::vector<Cells> rows)
{
    std::ranges::stable_sort(rows, [](const Cells& one, const Cells& other) {
        for (std::size_t place = 0;
             place < std::min<std::size_t>(2, one.size()); ++place)
        {
            const auto* left = std::get_if<std::string>(&one[place]);
            const auto* right = std::get_if<std::string>(&other[place]);
            const int order =
                left && right ? strverscmp(left->c_str(), right->c_str()) : 0;
            if (order != 0)
            {
                return order < 0;
            }
        }
        return false;
    });
    return rows;
}

} // namespace morvath::tools
