// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "tables/table.hpp"

#include <array>

using namespace morvath;

namespace
{

/** Unlike other tables this one keeps copies and nothing of the rows. */
void storeCopy(char*& field, CText&& cell)
{
    if (cell)
    {
        storeText(field, cell.get());
    }
}

constexpr std::array columns{
    column<&GpuInfoEntry::cardName, storeCopy>("CardName"),
    column<&GpuInfoEntry::manufacturer, storeCopy>("Manufacturer"),
    column<&GpuInfoEntry::partNumber, storeCopy>("PartNumber"),
    column<&GpuInfoEntry::serialNumber, storeCopy>("SerialNumber"),
    column<&GpuInfoEntry::totalMemory>("TotalMemory"),
    column<&GpuInfoEntry::temperature>("Temperature"),
    column<&GpuInfoEntry::fanLevel>("FanLevel"),
    column<&GpuInfoEntry::currentPower>("CurrentPower"),
};

constexpr Table gpus{
    "/xyz/openbmc_project/inventory/system/chassis/motherboard",
    "xyz.openbmc_project.Inventory.Item.Gpu", columns};

} // namespace

int32_t getGpuInfoEntry(GpuInfoEntry** outArray, int32_t* outCount)
{
    return getTable(gpus, outArray, outCount);
}

void freeGpuInfoEntry(GpuInfoEntry* one)
{
    releaseFields(one, &GpuInfoEntry::cardName, &GpuInfoEntry::manufacturer,
                  &GpuInfoEntry::partNumber, &GpuInfoEntry::serialNumber);
}
