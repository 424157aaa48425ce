// SPDX-License-Identifier: Apache-2.0
#include "screen.hpp"

#include "cli/terminal_text.hpp"
#include "progress.hpp"

#include <string.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <optional>

namespace morvath::tools
{
namespace
{

constexpr auto gap = "  ";
constexpr auto missing = "-";
constexpr std::size_t widestCell = 32;
constexpr std::size_t widestCellOfAll = 200;

struct Laid
{
    std::string text;
    std::size_t width;
};

struct LaidColumn
{
    const Column* column;
    std::vector<Laid> cells;
    std::size_t width = 0;
    bool isNumeric = false;
};

bool isNumeric(const Column& column, const std::vector<Cells>& rows,
               std::size_t place)
{
    const auto isNumber = [place](const Cells& row) {
        return std::holds_alternative<int64_t>(row[place]);
    };
    return column.form == Form::number || !column.unit.empty() ||
           std::ranges::any_of(rows, isNumber);
}

/** A size in the largest unit of which there is more than one. */
std::string sizeText(double kibibytes)
{
    constexpr std::array units{"KiB", "MiB", "GiB", "TiB", "PiB"};
    std::size_t unit = 0;
    for (; kibibytes >= 1024 && unit + 1 < units.size(); ++unit)
    {
        kibibytes /= 1024;
    }
    std::array<char, 400> text;
    std::snprintf(text.data(), text.size(), "%.1f", kibibytes);
    return numberText(text.data()) + ' ' + units[unit];
}

std::optional<double> kibibytesIn(const std::string& unit)
{
    constexpr std::pair<std::string_view, double> sizes[]{
        {"KiB", 1}, {"MiB", 1024}, {"GiB", 1024 * 1024}};
    for (const auto& [name, size] : sizes)
    {
        if (unit == name)
        {
            return size;
        }
    }
    return std::nullopt;
}

/** What nothing can have none of: the socket is empty. */
bool isOfNothing(const std::string& unit, double number)
{
    return number == 0 &&
           (kibibytesIn(unit) || unit == "MHz" || unit == "Gbit/s");
}

std::string withUnit(const std::string& text, const std::string& unit)
{
    const auto number = numberIn(text);
    if (unit.empty() || (number && isOfNothing(unit, *number)))
    {
        return unit.empty() ? text : missing;
    }
    const auto size = kibibytesIn(unit);
    return size && number ? sizeText(*number * *size) : text + ' ' + unit;
}

LaidColumn layOut(const std::vector<Column>& columns,
                  const std::vector<Cells>& rows, std::size_t place,
                  const Look& look)
{
    const auto& column = columns[place];
    LaidColumn laid{&column, {}, 0, isNumeric(column, rows, place)};
    if (look.withTitles)
    {
        laid.width = column.title.size();
    }
    const auto widest = look.isWide ? widestCellOfAll : widestCell;
    for (const auto& row : rows)
    {
        auto text = cli::visible(cellText(columns, row, place), widest);
        const auto width = cli::widthOf(text);
        laid.cells.push_back({std::move(text), width});
        laid.width = std::max(laid.width, width);
    }
    return laid;
}

std::size_t widthOf(const std::vector<LaidColumn>& columns)
{
    return std::accumulate(columns.begin(), columns.end(), std::size_t{0},
                           [](std::size_t sum, const LaidColumn& column) {
                               return sum + column.width + (sum > 0 ? 2 : 0);
                           });
}

/** Leaves out the least columns until the rest fits; how many. */
std::size_t fit(std::vector<LaidColumn>& columns, std::size_t width)
{
    std::size_t left = 0;
    while (width > 0 && columns.size() > 1 && widthOf(columns) > width)
    {
        // Of equals the last one.
        const auto least = std::max_element(
            columns.rbegin(), columns.rend(),
            [](const LaidColumn& one, const LaidColumn& other) {
                return one.column->rank < other.column->rank;
            });
        if (least->column->rank == always)
        {
            break;
        }
        columns.erase(std::next(least).base());
        ++left;
    }
    return left;
}

void append(std::string& line, const LaidColumn& column, const Laid& cell)
{
    const std::string blanks(column.width - cell.width, ' ');
    line += column.isNumeric ? blanks + cell.text : cell.text + blanks;
    line += gap;
}

void trim(std::string& line) { line.erase(line.find_last_not_of(' ') + 1); }

std::string titleLine(const std::vector<LaidColumn>& columns)
{
    std::string line;
    for (const auto& column : columns)
    {
        const auto& title = column.column->title;
        append(line, column, {title, title.size()});
    }
    trim(line);
    return line;
}

bool isWantedColour(const Look& look)
{
    const char* terminal = std::getenv("TERM");
    const char* none = std::getenv("NO_COLOR");
    const auto isDumb = !terminal || std::string_view(terminal) == "dumb";
    return look.colour == "always" ||
           (look.colour == "auto" && look.isTerminal && !isDumb &&
            !(none && *none));
}

} // namespace

void Look::measure()
{
    if (asJson && asCsv)
    {
        throw cli::Misuse("--csv excludes --json");
    }
    isTerminal = isatty(STDOUT_FILENO);
    hasUtf8 = cli::showsUtf8();
    hasColour = !isPlain && isWantedColour(*this);
    winsize size{};
    if (isTerminal && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0)
    {
        width = size.ws_col;
        height = size.ws_row;
    }
}

cli::Parameter colourOption(Look& look)
{
    auto option = cli::text("--color", "WHEN", look.colour,
                            "Whether to colour: auto, always or never");
    option.words = {{"auto", ""}, {"always", ""}, {"never", ""}};
    return option;
}

cli::Parameter plainOption(Look& look)
{
    return cli::flag("--plain", look.isPlain,
                     "Print without colours and drawings");
}

std::vector<cli::Parameter> lookOptions(Look& look)
{
    return {
        cli::flag("--json", look.asJson,
                  "Print one JSON document instead of text"),
        cli::flag("--csv", look.asCsv,
                  "Print comma-separated values instead of text"),
        cli::flag("--wide", look.isWide, "Print all columns, nothing cut"),
        plainOption(look),
        colourOption(look),
        {"--no-legend", "Leave out the titles",
         [&look](const std::string&) { look.withTitles = false; }},
    };
}

std::string coloured(const std::string& text, Colour colour, const Look& look)
{
    constexpr std::array codes{"", "\x1b[1;31m", "\x1b[33m", "\x1b[2m",
                               "\x1b[1m"};
    if (!look.hasColour || colour == Colour::none)
    {
        return text;
    }
    return codes.at(static_cast<std::size_t>(colour)) + text + "\x1b[0m";
}

std::string padded(std::string text, std::size_t width, bool toTheRight)
{
    const auto own = cli::widthOf(text);
    const std::string blanks(width - std::min(width, own), ' ');
    return toTheRight ? blanks + text : text + blanks;
}

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

std::string cellText(const std::vector<Column>& columns, const Cells& cells,
                     std::size_t column)
{
    const auto& [key, title, form, rank, unit] = columns[column];
    auto text = textOf(cells[column]);
    if (form == Form::number)
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
    return withUnit(text, hasUnit ? signOf(textOf(cells[next])) : unit);
}

std::vector<std::string> textLines(const std::vector<Column>& columns,
                                   const std::vector<Cells>& rows,
                                   const Look& look, RowColour colourOf)
{
    std::vector<LaidColumn> laid;
    for (std::size_t place = 0; place < columns.size(); ++place)
    {
        const auto& column = columns[place];
        if (column.form != Form::unit && (column.rank < seldom || look.isWide))
        {
            laid.push_back(layOut(columns, rows, place, look));
        }
    }
    const auto left = look.isWide ? 0 : fit(laid, look.width);
    std::vector<std::string> lines;
    if (look.withTitles)
    {
        lines.push_back(coloured(titleLine(laid), Colour::bold, look));
    }
    for (std::size_t row = 0; row < rows.size(); ++row)
    {
        std::string line;
        for (const auto& column : laid)
        {
            append(line, column, column.cells[row]);
        }
        trim(line);
        lines.push_back(coloured(
            line, colourOf ? colourOf(rows[row]) : Colour::none, look));
    }
    if (left > 0 && look.withTitles)
    {
        lines.push_back("(" + std::to_string(left) +
                        (left == 1 ? " column" : " columns") +
                        " more: enlarge the window, or --wide)");
    }
    return lines;
}

std::vector<std::string> blockLines(const std::vector<Column>& columns,
                                    const std::vector<Cells>& rows)
{
    std::size_t width = 0;
    for (const auto& column : columns)
    {
        width = std::max(width, column.title.size());
    }
    std::vector<std::string> lines;
    for (const auto& row : rows)
    {
        if (!lines.empty())
        {
            lines.emplace_back();
        }
        for (std::size_t place = 0; place < columns.size(); ++place)
        {
            lines.push_back(
                padded(columns[place].title + ':', width + 2) +
                cli::visible(cellText(columns, row, place), widestCellOfAll));
        }
    }
    return lines;
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

void complain(std::string_view message)
{
    endProgress();
    cli::complain("morvath", message);
}

void print(std::string_view text)
{
    endProgress();
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

} // namespace morvath::tools
