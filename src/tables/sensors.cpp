// SPDX-License-Identifier: Apache-2.0
#include "base/texts.hpp"
#include "morvath.h"
#include "tables/table.hpp"

#include <array>

using namespace morvath;

namespace
{

constexpr auto noLimit = "-";

constexpr std::array sensorColumns{
    column<&BmcSensorEntry::name>("Name"),
    Column{"CriticalAlarmHigh"},
    Column{"CriticalAlarmLow"},
    Column{"CriticalHigh"},
    Column{"CriticalLow"},
    Column{"WarningAlarmHigh"},
    Column{"WarningAlarmLow"},
    Column{"WarningHigh"},
    Column{"WarningLow"},
    Column{"MaxValue"},
    Column{"MinValue"},
    Column{"Unit"},
    Column{"Value"},
};

/** Where a kind of limits is in the row. */
struct Limits
{
    std::size_t alarmHigh;
    std::size_t alarmLow;
    std::size_t high;
    std::size_t low;
};

constexpr Limits critical{cell(sensorColumns, "CriticalAlarmHigh"),
                          cell(sensorColumns, "CriticalAlarmLow"),
                          cell(sensorColumns, "CriticalHigh"),
                          cell(sensorColumns, "CriticalLow")};
constexpr Limits warning{cell(sensorColumns, "WarningAlarmHigh"),
                         cell(sensorColumns, "WarningAlarmLow"),
                         cell(sensorColumns, "WarningHigh"),
                         cell(sensorColumns, "WarningLow")};

void storeLimits(Row row, const Limits& cells, int32_t& alarmHigh,
                 int32_t& alarmLow, char*& high, char*& low)
{
    // This cell alone tells whether the sensor has the kind at all.
    if (!row[cells.alarmHigh])
    {
        storeText(high, noLimit);
        storeText(low, noLimit);
        return;
    }
    store(alarmHigh, row.take(cells.alarmHigh));
    store(alarmLow, row.take(cells.alarmLow));
    store(high, row.take(cells.high));
    store(low, row.take(cells.low));
}

// The alarms come before the unit: of two bad cells it is theirs that shows.
void storeReading(BmcSensorEntry& entry, Row row)
{
    storeLimits(row, critical, entry.criticalAlarmHigh, entry.criticalAlarmLow,
                entry.criticalHigh, entry.criticalLow);
    storeLimits(row, warning, entry.warningAlarmHigh, entry.warningAlarmLow,
                entry.warningHigh, entry.warningLow);
    store(entry.maxValue, row.take(cell(sensorColumns, "MaxValue")));
    store(entry.minValue, row.take(cell(sensorColumns, "MinValue")));
    const char* unit = required(row[cell(sensorColumns, "Unit")]);
    storeText(entry.unit, lastPart(unit, unknownUnit));
    store(entry.value, row.take(cell(sensorColumns, "Value")));
}

} // namespace

int32_t getCommonSensorTableInfo(BmcSensorEntry** outArray, int32_t* outCount,
                                 const char* root, const char* interface)
{
    const Table sensors{root, interface, sensorColumns,
                        finishWith<storeReading>};
    return getTable(sensors, outArray, outCount);
}

// clang-format off
#define CLASS(function, name) \
    int32_t function(BmcSensorEntry** outArray, int32_t* outCount) \
    { \
        return getCommonSensorTableInfo( \
            outArray, outCount, "/xyz/openbmc_project/sensors/" name, \
            "xyz.openbmc_project.Sensor.Value"); \
    }

CLASS(getTempTableInfo, "temperature")
CLASS(getFanTableInfo, "fan_tach")
CLASS(getVoltageTableInfo, "voltage")
CLASS(getCurrentTableInfo, "current")
CLASS(getPowerTableInfo, "power")
CLASS(getPwmTableInfo, "fan_pwm")
// clang-format on

void freeBmcSensorEntry(BmcSensorEntry* one)
{
    releaseFields(one, &BmcSensorEntry::name, &BmcSensorEntry::value,
                  &BmcSensorEntry::unit, &BmcSensorEntry::minValue,
                  &BmcSensorEntry::maxValue, &BmcSensorEntry::criticalHigh,
                  &BmcSensorEntry::criticalLow, &BmcSensorEntry::warningHigh,
                  &BmcSensorEntry::warningLow);
}
