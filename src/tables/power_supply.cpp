// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "tables/table.hpp"

#include <array>

using namespace morvath;

namespace
{

constexpr auto rating = "800";

constexpr std::array columns{
    column<&PsuInfoEntry::name>("Name"),
    column<&PsuInfoEntry::manufacturer>("Manufacturer"),
    column<&PsuInfoEntry::partNumber>("PartNumber"),
    column<&PsuInfoEntry::serialNumber>("SerialNumber"),
    column<&PsuInfoEntry::firmwareVersion>("FirmwareVersion"),
};

/** The platform publishes no rating: every supply has the same. */
void addRating(PsuInfoEntry& entry, Row) { storeText(entry.rating, rating); }

constexpr Table powerSupplies{
    "/xyz/openbmc_project/inventory/system/powersupply",
    "xyz.openbmc_project.Inventory.Item.PowerSupply", columns,
    finishWith<addRating>};

} // namespace

int32_t getPsuTableInfo(PsuInfoEntry** outArray, int32_t* outCount)
{
    return getTable(powerSupplies, outArray, outCount);
}

void freePsuInfoEntry(PsuInfoEntry* one)
{
    releaseFields(one, &PsuInfoEntry::name, &PsuInfoEntry::manufacturer,
                  &PsuInfoEntry::partNumber, &PsuInfoEntry::serialNumber,
                  &PsuInfoEntry::rating, &PsuInfoEntry::firmwareVersion);
}
