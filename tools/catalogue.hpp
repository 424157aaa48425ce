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

} // namespace morvath::tools
