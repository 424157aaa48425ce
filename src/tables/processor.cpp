// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "tables/table.hpp"

#include <array>
#include <string>

using namespace morvath;

namespace
{

constexpr auto namePrefix = "CPU";

void storeName(char*& field, CText&& cell)
{
    storeText(field, std::string(namePrefix) + required(cell.get()));
}

constexpr std::array columns{
    column<&CpuInfoEntry::name, storeName>("LocationCode"),
    column<&CpuInfoEntry::manufacturer>("Manufacturer"),
    column<&CpuInfoEntry::version>("Version"),
    column<&CpuInfoEntry::partNumber>("PartNumber"),
    column<&CpuInfoEntry::serialNumber>("SerialNumber"),
    column<&CpuInfoEntry::architecture>("Architecture"),
    column<&CpuInfoEntry::curSpeedMhz>("CurSpeedInMhz"),
    column<&CpuInfoEntry::maxSpeedMhz>("MaxSpeedInMhz"),
    column<&CpuInfoEntry::coreCount>("CoreCount"),
    column<&CpuInfoEntry::threadCount>("ThreadCount"),
    // Consumers read either of the two fields for the one value.
    column<&CpuInfoEntry::l1CacheKiB>("L1CacheKiB"),
    column<&CpuInfoEntry::l1CacheKiBAlt>("L1CacheKiB"),
    column<&CpuInfoEntry::l2CacheKiB>("L2CacheKiB"),
    column<&CpuInfoEntry::l3CacheKiB>("L3CacheKiB"),
    column<&CpuInfoEntry::present>("Present"),
};

constexpr Table processors{"/", "xyz.openbmc_project.Inventory.Item.Cpu",
                           columns};

} // namespace

int32_t getCpuTableInfo(CpuInfoEntry** outArray, int32_t* outCount)
{
    return getTable(processors, outArray, outCount);
}

void freeCpuInfoEntry(CpuInfoEntry* one)
{
    releaseFields(one, &CpuInfoEntry::name, &CpuInfoEntry::manufacturer,
                  &CpuInfoEntry::version, &CpuInfoEntry::partNumber,
                  &CpuInfoEntry::serialNumber, &CpuInfoEntry::architecture);
}
