// SPDX-License-Identifier: Apache-2.0
#include "text_table.hpp"

#include <algorithm>
#include <string_view>

namespace morvath::tools
{
namespace
{

constexpr auto gap = "  ";

using Line = std::vector<std::string>;

/** In characters: the bytes that continue one are not counted. */
std::size_t widthOf(std::string_view text)
{
    return static_cast<std::size_t>(std::ranges::count_if(
        text, [](char byte) { return (byte & 0xc0) != 0x80; }));
}

std::vector<Line> linesOf(const std::vector<Column>& columns,
                          const std::vector<Cells>& rows, bool withTitles)
{
    std::vector<Line> lines;
    if (withTitles)
    {
        auto& titles = lines.emplace_back();
        std::ranges::transform(columns, std::back_inserter(titles),
                               &Column::title);
    }
    for (const auto& row : rows)
    {
        auto& line = lines.emplace_back();
        std::ranges::transform(row, std::back_inserter(line), textOf);
    }
    return lines;
}

std::vector<std::size_t> widthsOf(const std::vector<Line>& lines,
                                  std::size_t columnCount)
{
    std::vector<std::size_t> widths(columnCount);
    for (const auto& line : lines)
    {
        for (std::size_t column = 0; column < columnCount; ++column)
        {
            widths[column] = std::max(widths[column], widthOf(line[column]));
        }
    }
    return widths;
}

std::string joined(const Line& line, const std::vector<std::size_t>& widths)
{
    std::string text;
    for (std::size_t column = 0; column < line.size(); ++column)
    {
        text += line[column];
        text.append(widths[column] - widthOf(line[column]), ' ').append(gap);
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

} // namespace

std::vector<std::string> textLines(const std::vector<Column>& columns,
                                   const std::vector<Cells>& rows,
                                   bool withTitles)
{
    const auto lines = linesOf(columns, rows, withTitles);
    const auto widths = widthsOf(lines, columns.size());
    std::vector<std::string> texts;
    for (const auto& line : lines)
    {
        texts.push_back(joined(line, widths));
    }
    return texts;
}

} // namespace morvath::tools
