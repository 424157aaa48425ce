// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "report.hpp"

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

const char* wordOf(State state);
Colour colourOf(State state);

/** The state in a row of a sensor table. */
State stateOf(const Cells& cells);

// Columns of the sensor tables.
constexpr std::size_t nameColumn = 0;
constexpr std::size_t readingColumn = 1;
constexpr std::size_t unitColumn = 2;
constexpr std::size_t stateColumn = 3;
constexpr std::size_t criticalLowColumn = 4;
constexpr std::size_t warningLowColumn = 5;
constexpr std::size_t warningHighColumn = 6;
constexpr std::size_t criticalHighColumn = 7;
constexpr std::size_t minColumn = 8;
constexpr std::size_t maxColumn = 9;
constexpr std::size_t criticalAlarmLowColumn = 10;
constexpr std::size_t warningAlarmLowColumn = 11;
constexpr std::size_t warningAlarmHighColumn = 12;
constexpr std::size_t criticalAlarmHighColumn = 13;

/** The six usual classes, and all others that the platform has. */
std::vector<Table> allSensorTables();

const std::string& nameOf(const Cells& cells);
std::optional<double> numberOf(const Cells& cells, std::size_t column);

// How readings are drawn, in lines that are no wider than the terminal.

std::string lineUpTo(const std::string& line, const Look& look);

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
