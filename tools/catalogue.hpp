// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "table.hpp"

#include <string_view>
#include <vector>

namespace morvath::tools
{

/** All tables, in the order in which help and "--all" show them. */
const std::vector<Table>& tables();

/** The table of that name, or null. */
const Table* findTable(std::string_view name);

// The tables by kind, of which the catalogue is made.
std::vector<Table> inventoryTables();
std::vector<Table> sensorTables();
std::vector<Table> networkTables();
std::vector<Table> raidTables();

} // namespace morvath::tools
