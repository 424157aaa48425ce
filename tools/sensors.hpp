// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "screen.hpp"

#include <optional>
#include <string>
#include <vector>

namespace morvath::tools
{

/** The states of a sensor, the worst first. */
enum class State
{
    critical,
    warning,
    noReading,
    ok,
    noLimits,
};

Colour colourOf(State state);

/** The state in a row of a sensor table. */
State stateOf(const Cells& cells);

// Columns of the sensor tables.
constexpr std::size_t nameColumn = 0;
constexpr std::size_t readingColumn = 1;
constexpr std::size_t stateColumn = 3;
constexpr std::size_t criticalLowColumn = 4;
constexpr std::size_t warningLowColumn = 5;
constexpr std::size_t warningHighColumn = 6;
constexpr std::size_t criticalHighColumn = 7;
constexpr std::size_t minColumn = 8;
constexpr std::size_t maxColumn = 9;

/** A limit of a sensor, the columns about it and the other one of its kind. */
struct Limit
{
    /** Published, never changed. */
    std::string_view name;
    const char* side;
    std::size_t column;
    std::size_t alarm;
    std::size_t other;
};

constexpr Limit limits[]{
    {"critical_high", "above ", criticalHighColumn, 13, criticalLowColumn},
    {"critical_low", "below ", criticalLowColumn, 10, criticalHighColumn},
    {"warning_high", "above ", warningHighColumn, 12, warningLowColumn},
    {"warning_low", "below ", warningLowColumn, 11, warningHighColumn},
};

/** The six usual classes, and all others that the platform has. */
std::vector<Table> allSensorTables();

/** The number in a cell that holds one. */
std::optional<double> numberOf(const Value& cell);

// How readings are drawn, in lines that are no wider than the terminal.

/** "63 sensors: 1 critical, 1 warning". */
std::string summaryOf(const std::vector<TableReading>& readings);

/** A line for each alarm: state, name, reading and limit. */
std::vector<std::string> alarmLines(const std::vector<TableReading>& readings,
                                    const Look& look);

/** What could not be read, and below each why. */
std::vector<std::string> failureLines(const std::vector<TableReading>& readings,
                                      const Look& look);

/** All sensors by class, as far as they can be drawn. */
std::vector<std::string> classLines(const std::vector<TableReading>& readings,
                                    const Look& look);

} // namespace morvath::tools
