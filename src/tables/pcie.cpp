// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "tables/table.hpp"

#include <array>

using namespace morvath;

namespace
{

constexpr std::array columns{
    column<&PcieInfoEntry::name>("PrettyName"),
    column<&PcieInfoEntry::manufacturer>("Manufacturer"),
    column<&PcieInfoEntry::locationCode>("LocationCode"),
    column<&PcieInfoEntry::present>("Present"),
};

constexpr Table slots{"/", "xyz.openbmc_project.Inventory.Item.PCIeSlot",
                      columns};

} // namespace

int32_t getPcieTableInfo(PcieInfoEntry** outArray, int32_t* outCount)
{
    return getTable(slots, outArray, outCount);
}

void freePcieInfoEntry(PcieInfoEntry* one)
{
    releaseFields(one, &PcieInfoEntry::name, &PcieInfoEntry::manufacturer,
                  &PcieInfoEntry::locationCode);
}
