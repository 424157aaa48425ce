// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "tables/table.hpp"

#include <array>

using namespace morvath;

namespace
{

constexpr std::array columns{
    column<&NetAdapterInfoEntry::name>("Name"),
    column<&NetAdapterInfoEntry::manufacturer>("Manufacturer"),
    column<&NetAdapterInfoEntry::model>("Model"),
    column<&NetAdapterInfoEntry::subModel>("SubModel"),
    column<&NetAdapterInfoEntry::networkTech>("NetworkTech"),
    column<&NetAdapterInfoEntry::portNum>("PortNum"),
};

constexpr Table adapters{
    "/xyz/openbmc_project/inventory/system/chassis/motherboard",
    "xyz.openbmc_project.Inventory.Item.NetAdapter", columns};

} // namespace

int32_t getNetAdapterTableInfo(NetAdapterInfoEntry** outArray,
                               int32_t* outCount)
{
    return getTable(adapters, outArray, outCount);
}

void free_adapter_entry_content(NetAdapterInfoEntry* one)
{
    releaseFields(one, &NetAdapterInfoEntry::name,
                  &NetAdapterInfoEntry::manufacturer,
                  &NetAdapterInfoEntry::model, &NetAdapterInfoEntry::subModel,
                  &NetAdapterInfoEntry::networkTech);
}
