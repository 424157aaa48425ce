// SPDX-License-Identifier: Apache-2.0
#include "sensors.hpp"

#include "cli/terminal_text.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

namespace morvath::tools
{
namespace
{

// In columns; a gauge of less tells nothing, one of more no more.
constexpr int64_t narrowestGauge = 12;
constexpr std::size_t widestGauge = 60;
constexpr std::size_t widestName = 24;

// Blanks in the line of a sensor.
constexpr std::size_t gapsBeforeGauge = 8;
constexpr std::size_t gapsOfLine = gapsBeforeGauge + 2;

/** Empty without one. */
std::string limitText(const Cells& cells, std::size_t column)
{
    const auto* text = std::get_if<std::string>(&cells[column]);
    return text ? numberText(*text) : "";
}

std::string readingText(const TableReading& reading, const Cells& cells)
{
    const auto text = cellText(reading.table->columns, cells, readingColumn);
    return text == "-" ? "" : cli::visible(text, widestName);
}

bool isSet(const Cells& cells, std::size_t column)
{
    return cells[column] == Value(true);
}

/** Which limit a sensor has passed. */
std::string passedLimit(const Cells& cells)
{
    constexpr std::tuple<std::size_t, std::size_t, const char*> limits[]{
        {criticalAlarmLowColumn, criticalLowColumn, "below "},
        {criticalAlarmHighColumn, criticalHighColumn, "above "},
        {warningAlarmLowColumn, warningLowColumn, "below "},
        {warningAlarmHighColumn, warningHighColumn, "above "},
    };
    for (const auto& [alarm, limit, side] : limits)
    {
        if (isSet(cells, alarm))
        {
            const auto text = limitText(cells, limit);
            return text.empty() ? std::string("alarm") : side + text;
        }
    }
    return {};
}

struct Alarm
{
    const TableReading* reading;
    const Cells* cells;
};

std::vector<Alarm> alarmsOf(const std::vector<TableReading>& readings)
{
    std::vector<Alarm> alarms;
    for (const auto& reading : readings)
    {
        for (const auto& cells : reading.rows)
        {
            if (stateOf(cells) <= State::noReading)
            {
                alarms.push_back({&reading, &cells});
            }
        }
    }
    std::ranges::stable_sort(
        alarms, {}, [](const Alarm& alarm) { return stateOf(*alarm.cells); });
    return alarms;
}

/** Where between its limits a reading is; empty when that cannot be told. */
std::string gaugeOf(const Cells& cells, std::size_t width, const Look& look)
{
    const auto firstOf = [&cells](std::initializer_list<std::size_t> columns) {
        std::optional<double> number;
        for (const auto column : columns)
        {
            number = number ? number : numberOf(cells, column);
        }
        return number;
    };
    const auto value = numberOf(cells, readingColumn);
    const auto low = firstOf({criticalLowColumn, warningLowColumn, minColumn});
    const auto high =
        firstOf({criticalHighColumn, warningHighColumn, maxColumn});
    if (!value || !low || !high || !(*low < *high))
    {
        return std::string(width, ' ');
    }
    const auto share = std::clamp((*value - *low) / (*high - *low), 0.0, 1.0);
    const auto place =
        static_cast<std::size_t>(share * static_cast<double>(width - 1) + 0.5);
    std::string gauge;
    for (std::size_t i = 0; i < width; ++i)
    {
        const auto isHere = i == place;
        gauge += look.hasUtf8 ? (isHere ? "●" : "─") : (isHere ? "o" : "-");
    }
    return gauge;
}

/** A sensor in the parts of its line. */
struct SensorLine
{
    const Cells* cells;
    std::string name;
    std::string reading;
    std::array<std::string, 4> limits;
};

struct Widths
{
    std::size_t name = 0;
    std::size_t reading = 0;
    std::array<std::size_t, 4> limits{};
};

std::vector<SensorLine> sensorLines(const TableReading& reading)
{
    std::vector<SensorLine> lines;
    for (const auto& cells : reading.rows)
    {
        lines.push_back({&cells,
                         cli::visible(nameOf(cells), widestName),
                         readingText(reading, cells),
                         {limitText(cells, criticalLowColumn),
                          limitText(cells, warningLowColumn),
                          limitText(cells, warningHighColumn),
                          limitText(cells, criticalHighColumn)}});
    }
    return lines;
}

void widen(Widths& widths, const SensorLine& line)
{
    widths.name = std::max(widths.name, cli::widthOf(line.name));
    widths.reading = std::max(widths.reading, cli::widthOf(line.reading));
    for (std::size_t i = 0; i < line.limits.size(); ++i)
    {
        widths.limits[i] = std::max(widths.limits[i], line.limits[i].size());
    }
}

/** What is left for a gauge; below 0 there is no room for limits either. */
int64_t roomIn(const Widths& widths, const Look& look)
{
    const auto& [low, lower, upper, high] = widths.limits;
    const auto used =
        widths.name + widths.reading + low + lower + upper + high + gapsOfLine;
    return static_cast<int64_t>(look.width) - static_cast<int64_t>(used);
}

/** In columns; 0 where there is no room for one. */
std::size_t gaugeWidth(const Widths& widths, const Look& look)
{
    const auto room = roomIn(widths, look);
    return room < narrowestGauge ? 0 : std::min<std::size_t>(room, widestGauge);
}

std::string textOf(const SensorLine& line, const Widths& widths,
                   const Look& look)
{
    const auto& [low, lower, upper, high] = line.limits;
    const auto& limits = widths.limits;
    auto text = "  " + padded(line.name, widths.name) + "  " +
                padded(line.reading, widths.reading, true);
    if (roomIn(widths, look) >= 0)
    {
        text += "  " + padded(low, limits[0], true) + ' ' +
                padded(lower, limits[1], true) + ' ' +
                gaugeOf(*line.cells, gaugeWidth(widths, look), look) + ' ' +
                padded(upper, limits[2], true) + ' ' + high;
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return coloured(lineUpTo(text, look), colourOf(stateOf(*line.cells)), look);
}

/** A class, and above its gauges what they show where there are no limits. */
std::string titleOf(const TableReading& reading, const Widths& widths,
                    const Look& look)
{
    const auto room = gaugeWidth(widths, look);
    const auto& first = reading.rows.front();
    const auto isSame = [&first](const Cells& cells) {
        return cells[minColumn] == first[minColumn] &&
               cells[maxColumn] == first[maxColumn];
    };
    auto text = cli::visible(reading.table->name, widestName);
    if (room > 0 && std::ranges::all_of(reading.rows, isSame))
    {
        const auto low = limitText(first, minColumn);
        const auto high = limitText(first, maxColumn);
        const auto before = widths.name + widths.reading + widths.limits[0] +
                            widths.limits[1] + gapsBeforeGauge;
        text = padded(text, before) + low +
               padded(high, room - std::min(room, low.size()), true);
    }
    return coloured(text, Colour::bold, look);
}

} // namespace

const std::string& nameOf(const Cells& cells)
{
    static const std::string none;
    const auto* name = std::get_if<std::string>(&cells[nameColumn]);
    return name ? *name : none;
}

std::optional<double> numberOf(const Cells& cells, std::size_t column)
{
    const auto* text = std::get_if<std::string>(&cells[column]);
    return text ? numberIn(*text) : std::nullopt;
}

std::string lineUpTo(const std::string& line, const Look& look)
{
    return look.width > 0 ? cli::visible(line, look.width) : line;
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
    auto text = std::to_string(sensors) + " sensors";
    const auto* separator = ": ";
    const auto add = [&](std::size_t count, const char* what) {
        if (count > 0)
        {
            text.append(std::exchange(separator, ", "))
                .append(std::to_string(count) + ' ' + what);
        }
    };
    add(counts[State::critical], "critical");
    add(counts[State::warning], "warning");
    add(counts[State::noReading], "no reading");
    add(failures, "not read");
    return text;
}

std::vector<std::string> alarmLines(const std::vector<TableReading>& readings,
                                    const Look& look)
{
    constexpr std::array labels{"CRITICAL", "WARNING", "no value"};
    const auto alarms = alarmsOf(readings);
    std::size_t nameWidth = 0;
    std::size_t readingWidth = 0;
    for (const auto& [reading, cells] : alarms)
    {
        nameWidth = std::max(
            nameWidth, cli::widthOf(cli::visible(nameOf(*cells), widestName)));
        readingWidth =
            std::max(readingWidth, cli::widthOf(readingText(*reading, *cells)));
    }
    std::vector<std::string> lines;
    for (const auto& [reading, cells] : alarms)
    {
        const auto state = stateOf(*cells);
        auto line =
            padded(labels.at(static_cast<std::size_t>(state)), 10) +
            padded(cli::visible(nameOf(*cells), widestName), nameWidth) + "  " +
            padded(readingText(*reading, *cells), readingWidth, true) + "  " +
            passedLimit(*cells);
        line.erase(line.find_last_not_of(' ') + 1);
        lines.push_back(coloured(lineUpTo(line, look), colourOf(state), look));
    }
    return lines;
}

std::vector<std::string> failureLines(const std::vector<TableReading>& readings,
                                      const Look& look)
{
    std::vector<std::string> lines;
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
                    coloured(lineUpTo(line, look), Colour::yellow, look));
            }
        }
    }
    return lines;
}

std::vector<std::string> classLines(const std::vector<TableReading>& readings,
                                    const Look& look)
{
    Widths widths;
    std::vector<std::pair<const TableReading*, std::vector<SensorLine>>> all;
    for (const auto& reading : readings)
    {
        all.emplace_back(&reading, sensorLines(reading));
        for (const auto& line : all.back().second)
        {
            widen(widths, line);
        }
    }
    std::vector<std::string> lines;
    for (const auto& [reading, sensors] : all)
    {
        if (!sensors.empty())
        {
            lines.push_back(titleOf(*reading, widths, look));
        }
        for (const auto& sensor : sensors)
        {
            lines.push_back(textOf(sensor, widths, look));
        }
    }
    return lines;
}

} // namespace morvath::tools
