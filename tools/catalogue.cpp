// SPDX-License-Identifier: Apache-2.0
#include "catalogue.hpp"

#include <algorithm>
#include <iterator>

namespace morvath::tools
{
namespace
{

std::vector<Table> allTables()
{
    std::vector<Table> all;
    for (const auto tablesOfAKind :
         {inventoryTables, raidTables, sensorTables, networkTables})
    {
        std::ranges::move(tablesOfAKind(), std::back_inserter(all));
    }
    return all;
}

} // namespace

const std::vector<Table>& tables()
{
    static const auto all = allTables();
    return all;
}

const Table* findTable(std::string_view name)
{
    const auto found = std::ranges::find(tables(), name, &Table::name);
    return found == tables().end() ? nullptr : &*found;
}

} // namespace morvath::tools
