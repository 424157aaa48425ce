// SPDX-License-Identifier: Apache-2.0
#include "sensors.hpp"

#include "cli/terminal_text.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <numeric>
#include <utility>

namespace morvath::tools
{
namespace
{

// In columns; a gauge of less tells nothing, one of more no more.
constexpr int64_t narrowestGauge = 12;
constexpr int64_t widestGauge = 60;
constexpr std::size_t widestName = 24;

/** The columns of the line of a sensor; limits surround the gauge. */
constexpr std::string_view sides = "lrrrlr";
constexpr std::size_t gaugePlace = 4;
constexpr std::size_t partsOfLine = 7;

/** Empty without one. */
std::string limitText(const Cells& cells, std::size_t column)
{
    return numberText(textOf(cells[column]));
}

std::string nameText(const Cells& cells)
{
    const auto& name = cells[nameColumn];
    return name == Value() ? "" : cli::visible(textOf(name), widestName);
}

std::string readingText(const TableReading& reading, const Cells& cells)
{
    const auto text = cellText(reading.table->columns, cells, readingColumn);
    return text == "-" ? "" : cli::visible(text, widestName);
}

/** Which limit a sensor has passed. */
std::string passedLimit(const Cells& cells)
{
    for (const auto& limit : limits)
    {
        if (cells[limit.alarm] == Value(true))
        {
            const auto text = limitText(cells, limit.column);
            return text.empty() ? "alarm" : limit.side + text;
        }
    }
    return {};
}

/** The first number among some columns. */
std::optional<double> firstOf(const Cells& cells,
                              std::initializer_list<std::size_t> columns)
{
    std::optional<double> number;
    for (const auto column : columns)
    {
        number = number ? number : numberOf(cells[column]);
    }
    return number;
}

/** Where between its limits a reading is; empty when that cannot be told. */
std::string gaugeOf(const Cells& cells, std::size_t width, bool hasUtf8)
{
    const auto value = numberOf(cells[readingColumn]);
    const auto low =
        firstOf(cells, {criticalLowColumn, warningLowColumn, minColumn});
    const auto high =
        firstOf(cells, {criticalHighColumn, warningHighColumn, maxColumn});
    if (width == 0 || !value || !low || !high || !(*low < *high))
    {
        return std::string(width, ' ');
    }
    const auto share = std::clamp((*value - *low) / (*high - *low), 0.0, 1.0);
    const auto place =
        static_cast<std::size_t>(share * static_cast<double>(width - 1) + 0.5);
    std::string gauge;
    for (std::size_t i = 0; i < width; ++i)
    {
        gauge += hasUtf8 ? (i == place ? "●" : "─") : (i == place ? "o" : "-");
    }
    return gauge;
}

/** A class, and above its gauges what they show where there are no limits. */
std::string titleOf(const TableReading& reading, std::size_t before,
                    std::size_t room)
{
    const auto& first = reading.rows.front();
    const auto isSame = [&first](const Cells& cells) {
        return cells[minColumn] == first[minColumn] &&
               cells[maxColumn] == first[maxColumn];
    };
    const auto text = cli::visible(reading.table->name, widestName);
    if (room == 0 || !std::ranges::all_of(reading.rows, isSame))
    {
        return text;
    }
    const auto low = limitText(first, minColumn);
    return padded(text, before) + low +
           padded(limitText(first, maxColumn),
                  room - std::min(room, low.size()), true);
}

} // namespace

std::optional<double> numberOf(const Value& cell)
{
    const auto* text = std::get_if<std::string>(&cell);
    return text ? numberIn(*text) : std::nullopt;
}

std::string summaryOf(const std::vector<TableReading>& readings)
{
    std::map<State, std::size_t> counts;
    std::size_t sensors = 0;
    std::size_t failures = 0;
    for (const auto& reading : readings)
    {
        sensors += reading.rows.size();
        failures += reading.failures.size();
        for (const auto& cells : reading.rows)
        {
            ++counts[stateOf(cells)];
        }
    }
    Texts parts;
    const auto add = [&parts](std::size_t count, const char* what) {
        if (count > 0)
        {
            parts.push_back(std::to_string(count) + what);
        }
    };
    add(counts[State::critical], " critical");
    add(counts[State::warning], " warning");
    add(counts[State::noReading], " no reading");
    add(failures, " not read");
    return std::to_string(sensors) + " sensors" + (parts.empty() ? "" : ": ") +
           joined(parts, ", ");
}

Texts alarmLines(const std::vector<TableReading>& readings, const Look& look)
{
    // As wide whatever there is.
    constexpr std::array labels{"CRITICAL", "WARNING ", "no value"};
    std::vector<Texts> rows;
    std::vector<State> states;
    for (const auto state : {State::critical, State::warning, State::noReading})
    {
        for (const auto& reading : readings)
        {
            for (const auto& cells : reading.rows)
            {
                if (stateOf(cells) == state)
                {
                    states.push_back(state);
                    rows.push_back({labels.at(static_cast<std::size_t>(state)),
                                    nameText(cells),
                                    readingText(reading, cells),
                                    passedLimit(cells)});
                }
            }
        }
    }
    auto lines = inColumns(rows, "llr");
    for (std::size_t line = 0; line < lines.size(); ++line)
    {
        lines[line] =
            coloured(fitted(lines[line], look), colourOf(states[line]), look);
    }
    return lines;
}

Texts failureLines(const std::vector<TableReading>& readings, const Look& look)
{
    Texts lines;
    for (const auto& reading : readings)
    {
        for (const auto& [object, message] : reading.failures)
        {
            const auto& [path, service] = object;
            const auto& what = path.empty() ? reading.table->name : path;
            const auto why =
                service.empty() ? message : service + ": " + message;
            for (const auto& line : {"not read  " + what, "          " + why})
            {
                lines.push_back(
                    coloured(fitted(line, look), Colour::yellow, look));
            }
        }
    }
    return lines;
}

Texts classLines(const std::vector<TableReading>& readings, const Look& look)
{
    std::vector<Texts> rows;
    for (const auto& reading : readings)
    {
        for (const auto& cells : reading.rows)
        {
            rows.push_back({"  " + nameText(cells),
                            ' ' + readingText(reading, cells),
                            ' ' + limitText(cells, criticalLowColumn),
                            limitText(cells, warningLowColumn), "",
                            limitText(cells, warningHighColumn),
                            limitText(cells, criticalHighColumn)});
        }
    }
    const auto widths = widthsOf(rows);
    const auto sumTo = [&widths](std::size_t place) {
        return std::accumulate(widths.begin(), widths.begin() + place, place);
    };
    // What is left for a gauge; below 0 there is no room for limits either.
    const auto room = rows.empty()
                          ? 0
                          : static_cast<int64_t>(look.width) -
                                static_cast<int64_t>(sumTo(partsOfLine)) + 1;
    const std::size_t width =
        room < narrowestGauge ? 0 : std::min(room, widestGauge);
    auto row = rows.begin();
    for (const auto& reading : readings)
    {
        for (const auto& cells : reading.rows)
        {
            (*row)[gaugePlace] = gaugeOf(cells, width, look.hasUtf8);
            row++->resize(room < 0 ? 2 : partsOfLine);
        }
    }
    const auto drawn = inColumns(rows, sides, " ");
    auto line = drawn.begin();
    Texts lines;
    for (const auto& reading : readings)
    {
        if (!reading.rows.empty())
        {
            lines.push_back(coloured(titleOf(reading, sumTo(gaugePlace), width),
                                     Colour::bold, look));
        }
        for (const auto& cells : reading.rows)
        {
            lines.push_back(coloured(fitted(*line++, look),
                                     colourOf(stateOf(cells)), look));
        }
    }
    return lines;
}

} // namespace morvath::tools
