// SPDX-License-Identifier: Apache-2.0
#include "sensors.hpp"

#include "record_table.hpp"

#include <morvath.h>

#include <algorithm>
#include <array>
#include <memory>
#include <set>
#include <string_view>

namespace morvath::tools
{
namespace
{

using Entry = BmcSensorEntry;

const std::string root = "/xyz/openbmc_project/sensors/";
constexpr auto interface = "xyz.openbmc_project.Sensor.Value";

constexpr std::array states{"critical", "warning", "no reading", "ok",
                            "no limits"};

bool isNumber(const char* text) { return text && numberIn(text); }

bool hasLimits(const Entry& entry)
{
    const auto limits = {entry.criticalHigh, entry.criticalLow,
                         entry.warningHigh, entry.warningLow};
    return std::ranges::any_of(limits, isNumber);
}

/** The alarms of the platform count: they know the hysteresis of a sensor. */
State stateIn(const Entry& entry)
{
    if (entry.criticalAlarmHigh || entry.criticalAlarmLow)
    {
        return State::critical;
    }
    if (entry.warningAlarmHigh || entry.warningAlarmLow)
    {
        return State::warning;
    }
    if (!isNumber(entry.value))
    {
        return State::noReading;
    }
    return hasLimits(entry) ? State::ok : State::noLimits;
}

Value stateOf(const Entry& entry)
{
    return std::string(wordOf(stateIn(entry)));
}

Table sensorTable(std::string name, std::string summary,
                  const std::string& segment)
{
    const auto get = [path = root + segment](Entry** records, int32_t* count) {
        return getCommonSensorTableInfo(records, count, path.c_str(),
                                        interface);
    };
    auto table = recordTable<Entry>(
        std::move(name), std::move(summary), get,
        {
            {{"name", "NAME", Form::text, always}, &Entry::name},
            {{"value", "READING", Form::number, always}, &Entry::value},
            {{"unit", "UNIT", Form::unit}, &Entry::unit},
            {{"state", "STATE", Form::text, always}, stateOf},
            {{"criticalLow", "CRIT LOW", Form::number}, &Entry::criticalLow},
            {{"warningLow", "WARN LOW", Form::number, 2}, &Entry::warningLow},
            {{"warningHigh", "WARN HIGH", Form::number, 2},
             &Entry::warningHigh},
            {{"criticalHigh", "CRIT HIGH", Form::number}, &Entry::criticalHigh},
            {{"minValue", "MIN", Form::number, seldom}, &Entry::minValue},
            {{"maxValue", "MAX", Form::number, seldom}, &Entry::maxValue},
            {{"criticalAlarmLow", "CRIT LOW ALARM", Form::text, seldom},
             &Entry::criticalAlarmLow,
             yesOrNo},
            {{"warningAlarmLow", "WARN LOW ALARM", Form::text, seldom},
             &Entry::warningAlarmLow,
             yesOrNo},
            {{"warningAlarmHigh", "WARN HIGH ALARM", Form::text, seldom},
             &Entry::warningAlarmHigh,
             yesOrNo},
            {{"criticalAlarmHigh", "CRIT HIGH ALARM", Form::text, seldom},
             &Entry::criticalAlarmHigh,
             yesOrNo},
        });
    table.colourOf = [](const Cells& cells) {
        return colourOf(morvath::tools::stateOf(cells));
    };
    table.needs = {{"Unit", ""},
                   {"CriticalAlarmLow", "CriticalAlarmHigh"},
                   {"WarningAlarmLow", "WarningAlarmHigh"}};
    return table;
}

/** The classes below the root of all sensors, by their part of the path. */
std::set<std::string> foundClasses()
{
    char** paths = nullptr;
    uint32_t count = 0;
    beginReading("classes of sensors");
    // When this fails, reading the usual classes tells why.
    const auto code = getDbusInterface("", "/xyz/openbmc_project/sensors",
                                       interface, &paths, &count);
    std::set<std::string> segments;
    for (uint32_t i = 0; code == 0 && i < count; ++i)
    {
        const std::unique_ptr<char, Release<std::free>> path(paths[i]);
        const std::string_view whole(path.get());
        if (whole.starts_with(root))
        {
            const auto rest = whole.substr(root.size());
            segments.emplace(rest.substr(0, rest.find('/')));
        }
    }
    std::free(paths);
    return segments;
}

struct Class
{
    const char* name;
    const char* summary;
    const char* segment;
};

constexpr Class knownClasses[]{
    {"temperatures", "temperature sensors", "temperature"},
    {"fans", "speeds of the fans", "fan_tach"},
    {"voltages", "voltage sensors", "voltage"},
    {"currents", "current sensors", "current"},
    {"powers", "power sensors", "power"},
    {"pwms", "how the fans are driven", "fan_pwm"},
};

} // namespace

const char* wordOf(State state)
{
    return states.at(static_cast<std::size_t>(state));
}

Colour colourOf(State state)
{
    constexpr std::array colours{Colour::red, Colour::yellow, Colour::faint};
    const auto place = static_cast<std::size_t>(state);
    return place < colours.size() ? colours.at(place) : Colour::none;
}

State stateOf(const Cells& cells)
{
    const auto& word = cells[stateColumn];
    const auto found = std::ranges::find_if(states, [&word](const char* state) {
        return word == Value(std::string(state));
    });
    return static_cast<State>(found - states.begin());
}

std::vector<Table> sensorTables()
{
    std::vector<Table> tables;
    for (const auto& [name, summary, segment] : knownClasses)
    {
        tables.push_back(sensorTable(name, summary, segment));
    }
    return tables;
}

std::vector<Table> allSensorTables()
{
    auto tables = sensorTables();
    for (const auto& segment : foundClasses())
    {
        if (std::ranges::find(knownClasses, segment, &Class::segment) ==
            std::end(knownClasses))
        {
            tables.push_back(sensorTable(segment, segment, segment));
        }
    }
    return tables;
}

} // namespace morvath::tools
