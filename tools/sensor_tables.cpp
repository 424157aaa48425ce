// SPDX-License-Identifier: Apache-2.0
#include "sensor_tables.hpp"

#include "catalogue.hpp"
#include "record_table.hpp"

#include <morvath.h>

#include <algorithm>

namespace morvath::tools
{
namespace
{

using Entry = BmcSensorEntry;

bool isNumber(const char* text)
{
    return text && !numberIn(text).is_null();
}

bool hasLimits(const Entry& entry)
{
    const auto limits = {entry.criticalHigh, entry.criticalLow,
                         entry.warningHigh, entry.warningLow};
    return std::ranges::any_of(limits, isNumber);
}

/** The alarms of the platform count: they know the hysteresis of a sensor. */
Value stateOf(const Entry& entry)
{
    if (!isNumber(entry.value))
    {
        return stateNoReading;
    }
    if (entry.criticalAlarmHigh || entry.criticalAlarmLow)
    {
        return stateCritical;
    }
    if (entry.warningAlarmHigh || entry.warningAlarmLow)
    {
        return stateWarning;
    }
    return hasLimits(entry) ? stateOk : stateNoLimits;
}

Table sensorTable(std::string name, std::string summary,
                  int32_t (*get)(Entry**, int32_t*))
{
    return recordTable<Entry>(
        std::move(name), std::move(summary), {get, freeBmcSensorEntry},
        {
            {{"name", "NAME"}, &Entry::name},
            {{"value", "READING", Form::number}, &Entry::value},
            {{"unit", "UNIT"}, &Entry::unit},
            {{"state", "STATE"}, stateOf},
            {{"criticalLow", "CRIT LOW", Form::number}, &Entry::criticalLow},
            {{"warningLow", "WARN LOW", Form::number}, &Entry::warningLow},
            {{"warningHigh", "WARN HIGH", Form::number}, &Entry::warningHigh},
            {{"criticalHigh", "CRIT HIGH", Form::number}, &Entry::criticalHigh},
            {{"minValue", "MIN", Form::number}, &Entry::minValue},
            {{"maxValue", "MAX", Form::number}, &Entry::maxValue},
            {{"criticalAlarmLow", "CRIT LOW ALARM"},
             &Entry::criticalAlarmLow,
             yesOrNo},
            {{"warningAlarmLow", "WARN LOW ALARM"},
             &Entry::warningAlarmLow,
             yesOrNo},
            {{"warningAlarmHigh", "WARN HIGH ALARM"},
             &Entry::warningAlarmHigh,
             yesOrNo},
            {{"criticalAlarmHigh", "CRIT HIGH ALARM"},
             &Entry::criticalAlarmHigh,
             yesOrNo},
        });
}

} // namespace

std::vector<Table> sensorTables()
{
    return {
        sensorTable("temperatures", "temperature sensors", getTempTableInfo),
        sensorTable("fans", "speeds of the fans", getFanTableInfo),
        sensorTable("voltages", "voltage sensors", getVoltageTableInfo),
        sensorTable("currents", "current sensors", getCurrentTableInfo),
        sensorTable("powers", "power sensors", getPowerTableInfo),
        sensorTable("pwms", "how the fans are driven", getPwmTableInfo),
    };
}

} // namespace morvath::tools
