// SPDX-License-Identifier: Apache-2.0
#include "records.hpp"
#include "sensors.hpp"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <set>

namespace morvath::tools
{
namespace
{

using Sensor = BmcSensorEntry;

const std::string root = "/xyz/openbmc_project/sensors/";
constexpr auto interface = "xyz.openbmc_project.Sensor.Value";

constexpr std::array states{"critical", "warning", "no reading", "ok",
                            "no limits"};

bool isNumber(const char* text) { return text && numberIn(text); }

/** The alarms of the platform count: they know the hysteresis of a sensor. */
State stateIn(const Sensor& sensor)
{
    const auto limits = {sensor.criticalHigh, sensor.criticalLow,
                         sensor.warningHigh, sensor.warningLow};
    return sensor.criticalAlarmHigh || sensor.criticalAlarmLow ? State::critical
           : sensor.warningAlarmHigh || sensor.warningAlarmLow ? State::warning
           : !isNumber(sensor.value)               ? State::noReading
           : std::ranges::any_of(limits, isNumber) ? State::ok
                                                   : State::noLimits;
}

Value stateText(const void* record)
{
    const auto state = stateIn(*static_cast<const Sensor*>(record));
    return states.at(static_cast<std::size_t>(state));
}

/** A number as text. */
constexpr Column number(std::string_view key, std::string_view title,
                        Value (*read)(const void*), int rank = 1)
{
    return {key, title, read, rank, {}, {}, Form::number};
}

constexpr Column columns[]{
    {"name",
     "NAME",
     of<&Sensor::name>,
     always,
     {Published::identity, "sensor"}},
    number("value", "READING", of<&Sensor::value>, always),
    {"unit", "UNIT", of<&Sensor::unit>, 1, {}, {}, Form::unit},
    {"state", "STATE", stateText, always},
    number("criticalLow", "CRIT LOW", of<&Sensor::criticalLow>),
    number("warningLow", "WARN LOW", of<&Sensor::warningLow>, 2),
    number("warningHigh", "WARN HIGH", of<&Sensor::warningHigh>, 2),
    number("criticalHigh", "CRIT HIGH", of<&Sensor::criticalHigh>),
    number("minValue", "MIN", of<&Sensor::minValue>, seldom),
    number("maxValue", "MAX", of<&Sensor::maxValue>, seldom),
    {"criticalAlarmLow", "CRIT LOW ALARM", yesOrNo<&Sensor::criticalAlarmLow>,
     seldom},
    {"warningAlarmLow", "WARN LOW ALARM", yesOrNo<&Sensor::warningAlarmLow>,
     seldom},
    {"warningAlarmHigh", "WARN HIGH ALARM", yesOrNo<&Sensor::warningAlarmHigh>,
     seldom},
    {"criticalAlarmHigh", "CRIT HIGH ALARM",
     yesOrNo<&Sensor::criticalAlarmHigh>, seldom},
};

std::vector<Cells> sensorRows(const Table& table)
{
    return rowsOf<Sensor>(table, [&table](Sensor** records, int32_t* count) {
        return getCommonSensorTableInfo(records, count, table.root.c_str(),
                                        interface);
    });
}

Table classOf(std::string name, std::string summary, const std::string& segment,
              std::string_view metric = {}, std::string_view help = {},
              std::string_view reading = {})
{
    return {std::move(name),
            std::move(summary),
            columns,
            sensorRows,
            metric,
            help,
            "Unit CriticalAlarmLow:CriticalAlarmHigh "
            "WarningAlarmLow:WarningAlarmHigh",
            false,
            root + segment,
            reading};
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

} // namespace

Colour colourOf(State state)
{
    return state == State::critical    ? Colour::red
           : state == State::warning   ? Colour::yellow
           : state == State::noReading ? Colour::faint
                                       : Colour::none;
}

State stateOf(const Cells& cells)
{
    const auto word = textOf(cells[stateColumn]);
    return static_cast<State>(std::ranges::find(states, word) - states.begin());
}

std::vector<Table> sensorTables()
{
    return {
        classOf("temperatures", "temperature sensors", "temperature",
                "temperature", "Temperature.", "celsius"),
        classOf("fans", "speeds of the fans", "fan_tach", "fan",
                "Speed of a fan.", "speed_rpm"),
        classOf("voltages", "voltage sensors", "voltage", "voltage", "Voltage.",
                "volts"),
        classOf("currents", "current sensors", "current", "current", "Current.",
                "amperes"),
        classOf("powers", "power sensors", "power", "power", "Power.", "watts"),
        classOf("pwms", "how the fans are driven", "fan_pwm", "pwm",
                "How a fan is driven, 0 to 1.", "ratio"),
    };
}

std::vector<Table> allSensorTables()
{
    auto all = sensorTables();
    for (const auto& segment : foundClasses())
    {
        if (std::ranges::find(all, root + segment, &Table::root) == all.end())
        {
            all.push_back(classOf(segment, segment, segment));
        }
    }
    return all;
}

} // namespace morvath::tools
