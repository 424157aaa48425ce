// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "tables/table.hpp"

#include <array>
#include <string>

using namespace morvath;

namespace
{

constexpr auto sensorInterface = "xyz.openbmc_project.Sensor.Value";
constexpr auto noLimit = "-";
// In lower case, unlike the word that getLastStr() has for the same.
constexpr auto unknownUnit = "unknown";

/** The short word of the unit. */
void storeUnit(char*& field, CText&& cell)
{
    const std::string unit(cell.get());
    const auto dot = unit.rfind('.');
    field = copyText(dot == unit.npos ? unknownUnit : &unit[dot + 1]).release();
}

constexpr std::array columns{
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

constexpr std::size_t maxValueCell = 9;
constexpr std::size_t minValueCell = 10;
constexpr std::size_t unitCell = 11;
constexpr std::size_t valueCell = 12;

/** Four neighbouring cells, from the one that belongs to alarmHigh. */
struct Thresholds
{
    std::size_t firstCell;
    int32_t BmcSensorEntry::*alarmHigh;
    int32_t BmcSensorEntry::*alarmLow;
    char* BmcSensorEntry::*high;
    char* BmcSensorEntry::*low;
};

constexpr Thresholds critical{
    1,
    &BmcSensorEntry::criticalAlarmHigh,
    &BmcSensorEntry::criticalAlarmLow,
    &BmcSensorEntry::criticalHigh,
    &BmcSensorEntry::criticalLow,
};

constexpr Thresholds warning{
    5,
    &BmcSensorEntry::warningAlarmHigh,
    &BmcSensorEntry::warningAlarmLow,
    &BmcSensorEntry::warningHigh,
    &BmcSensorEntry::warningLow,
};

void storeThresholds(BmcSensorEntry& entry, Row row, const Thresholds& group)
{
    const auto first = group.firstCell;
    // The first cell alone tells whether the sensor has the group at all.
    if (!row[first])
    {
        entry.*group.high = copyText(noLimit).release();
        entry.*group.low = copyText(noLimit).release();
        return;
    }
    store(entry.*group.alarmHigh, row.take(first));
    store(entry.*group.alarmLow, row.take(first + 1));
    store(entry.*group.high, row.take(first + 2));
    store(entry.*group.low, row.take(first + 3));
}

// The alarms come before the unit: of two bad cells it is theirs that shows.
void storeReading(BmcSensorEntry& entry, Row row)
{
    storeThresholds(entry, row, critical);
    storeThresholds(entry, row, warning);
    store(entry.maxValue, row.take(maxValueCell));
    store(entry.minValue, row.take(minValueCell));
    storeUnit(entry.unit, row.take(unitCell));
    store(entry.value, row.take(valueCell));
}

} // namespace

int32_t getCommonSensorTableInfo(BmcSensorEntry** outArray, int32_t* outCount,
                                 const char* root, const char* interface)
{
    const Table sensors{root, interface, columns, finishWith<storeReading>};
    return getTable(sensors, outArray, outCount);
}

int32_t getTempTableInfo(BmcSensorEntry** outArray, int32_t* outCount)
{
    return getCommonSensorTableInfo(outArray, outCount,
                                    "/xyz/openbmc_project/sensors/temperature",
                                    sensorInterface);
}

int32_t getFanTableInfo(BmcSensorEntry** outArray, int32_t* outCount)
{
    return getCommonSensorTableInfo(outArray, outCount,
                                    "/xyz/openbmc_project/sensors/fan_tach",
                                    sensorInterface);
}

int32_t getVoltageTableInfo(BmcSensorEntry** outArray, int32_t* outCount)
{
    return getCommonSensorTableInfo(outArray, outCount,
                                    "/xyz/openbmc_project/sensors/voltage",
                                    sensorInterface);
}

int32_t getCurrentTableInfo(BmcSensorEntry** outArray, int32_t* outCount)
{
    return getCommonSensorTableInfo(outArray, outCount,
                                    "/xyz/openbmc_project/sensors/current",
                                    sensorInterface);
}

int32_t getPowerTableInfo(BmcSensorEntry** outArray, int32_t* outCount)
{
    return getCommonSensorTableInfo(outArray, outCount,
                                    "/xyz/openbmc_project/sensors/power",
                                    sensorInterface);
}

int32_t getPwmTableInfo(BmcSensorEntry** outArray, int32_t* outCount)
{
    return getCommonSensorTableInfo(outArray, outCount,
                                    "/xyz/openbmc_project/sensors/fan_pwm",
                                    sensorInterface);
}

void freeBmcSensorEntry(BmcSensorEntry* one)
{
    releaseFields(one, &BmcSensorEntry::name, &BmcSensorEntry::value,
                  &BmcSensorEntry::unit, &BmcSensorEntry::minValue,
                  &BmcSensorEntry::maxValue, &BmcSensorEntry::criticalHigh,
                  &BmcSensorEntry::criticalLow, &BmcSensorEntry::warningHigh,
                  &BmcSensorEntry::warningLow);
}
