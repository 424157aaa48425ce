#include "catalogue.hpp"

#include "record_table.hpp"

#include <morvath.h>

#include <algorithm>

namespace morvath::tools
{
namespace
{

Table powerSupplies()
{
    using Entry = PsuInfoEntry;
    return recordTable<Entry>(
        "power-supplies", "power supplies and their firmware",
        {getPsuTableInfo, freePsuInfoEntry},
        {
            {{"name", "NAME"}, &Entry::name},
            {{"manufacturer", "MANUFACTURER"}, &Entry::manufacturer},
            {{"partNumber", "PART NUMBER"}, &Entry::partNumber},
            {{"serialNumber", "SERIAL NUMBER"}, &Entry::serialNumber},
            {{"ratingWatts", "RATING [W]"}, &Entry::rating},
            {{"firmwareVersion", "FIRMWARE"}, &Entry::firmwareVersion},
        });
}

} // namespace

const std::vector<Table>& tables()
{
    static const std::vector<Table> all{powerSupplies()};
    return all;
}

const Table* findTable(std::string_view name)
{
    const auto found = std::ranges::find(tables(), name, &Table::name);
    return found == tables().end() ? nullptr : &*found;
}

} // namespace morvath::tools
