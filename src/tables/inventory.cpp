// SPDX-License-Identifier: Apache-2.0
#include "base/texts.hpp"
#include "morvath.h"
#include "tables/table.hpp"

#include <array>
#include <string>

using namespace morvath;

namespace
{

constexpr auto anywhere = "/";
constexpr auto motherboard =
    "/xyz/openbmc_project/inventory/system/chassis/motherboard";

constexpr auto rating = "800";

constexpr std::array supplyColumns{
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
    "xyz.openbmc_project.Inventory.Item.PowerSupply", supplyColumns,
    finishWith<addRating>};

constexpr std::array slotColumns{
    column<&PcieInfoEntry::name>("PrettyName"),
    column<&PcieInfoEntry::manufacturer>("Manufacturer"),
    column<&PcieInfoEntry::locationCode>("LocationCode"),
    column<&PcieInfoEntry::present>("Present"),
};

constexpr Table slots{anywhere, "xyz.openbmc_project.Inventory.Item.PCIeSlot",
                      slotColumns};

constexpr std::array adapterColumns{
    column<&NetAdapterInfoEntry::name>("Name"),
    column<&NetAdapterInfoEntry::manufacturer>("Manufacturer"),
    column<&NetAdapterInfoEntry::model>("Model"),
    column<&NetAdapterInfoEntry::subModel>("SubModel"),
    column<&NetAdapterInfoEntry::networkTech>("NetworkTech"),
    column<&NetAdapterInfoEntry::portNum>("PortNum"),
};

constexpr Table adapters{motherboard,
                         "xyz.openbmc_project.Inventory.Item.NetAdapter",
                         adapterColumns};

constexpr std::array gpuColumns{
    column<&GpuInfoEntry::cardName>("CardName"),
    column<&GpuInfoEntry::manufacturer>("Manufacturer"),
    column<&GpuInfoEntry::partNumber>("PartNumber"),
    column<&GpuInfoEntry::serialNumber>("SerialNumber"),
    column<&GpuInfoEntry::totalMemory>("TotalMemory"),
    column<&GpuInfoEntry::temperature>("Temperature"),
    column<&GpuInfoEntry::fanLevel>("FanLevel"),
    column<&GpuInfoEntry::currentPower>("CurrentPower"),
};

constexpr Table gpus{motherboard, "xyz.openbmc_project.Inventory.Item.Gpu",
                     gpuColumns};

/** The short word of an enumeration value. */
void storeWord(char*& field, CText&& cell)
{
    storeText(field, lastPart(required(cell.get()), unknownWord));
}

constexpr std::array moduleColumns{
    column<&MemInfoEntry::name>("Name"),
    column<&MemInfoEntry::manufacturer>("Manufacturer"),
    column<&MemInfoEntry::partNumber>("PartNumber"),
    column<&MemInfoEntry::serialNumber>("SerialNumber"),
    column<&MemInfoEntry::memoryType, storeWord>("MemoryType"),
    column<&MemInfoEntry::formFactor, storeWord>("FormFactor"),
    column<&MemInfoEntry::bankLocator>("BankLocator"),
    column<&MemInfoEntry::deviceLocator>("MemoryDeviceLocator"),
    column<&MemInfoEntry::ecc, storeWord>("ECC"),
    column<&MemInfoEntry::maxSpeedMhz>("MaxMemorySpeedInMhz"),
    column<&MemInfoEntry::sizeKB>("MemorySizeInKB"),
    column<&MemInfoEntry::dataWidth>("MemoryDataWidth"),
    column<&MemInfoEntry::present>("Present"),
};

constexpr Table modules{anywhere, "xyz.openbmc_project.Inventory.Item.Dimm",
                        moduleColumns};

constexpr auto namePrefix = "CPU";

void storeName(char*& field, CText&& cell)
{
    storeText(field, std::string(namePrefix) + required(cell.get()));
}

constexpr std::array processorColumns{
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

constexpr Table processors{anywhere, "xyz.openbmc_project.Inventory.Item.Cpu",
                           processorColumns};

} // namespace

// An export that only names its table is a line.
// clang-format off
#define TABLE(function, Record, table) \
    int32_t function(Record** outArray, int32_t* outCount) \
    { \
        return getTable(table, outArray, outCount); \
    }

TABLE(getPsuTableInfo, PsuInfoEntry, powerSupplies)
TABLE(getPcieTableInfo, PcieInfoEntry, slots)
TABLE(getNetAdapterTableInfo, NetAdapterInfoEntry, adapters)
TABLE(getGpuInfoEntry, GpuInfoEntry, gpus)
TABLE(getMemoryTableInfo, MemInfoEntry, modules)
TABLE(getCpuTableInfo, CpuInfoEntry, processors)
// clang-format on

void freePsuInfoEntry(PsuInfoEntry* one)
{
    releaseFields(one, &PsuInfoEntry::name, &PsuInfoEntry::manufacturer,
                  &PsuInfoEntry::partNumber, &PsuInfoEntry::serialNumber,
                  &PsuInfoEntry::rating, &PsuInfoEntry::firmwareVersion);
}

void freePcieInfoEntry(PcieInfoEntry* one)
{
    releaseFields(one, &PcieInfoEntry::name, &PcieInfoEntry::manufacturer,
                  &PcieInfoEntry::locationCode);
}

void free_adapter_entry_content(NetAdapterInfoEntry* one)
{
    releaseFields(one, &NetAdapterInfoEntry::name,
                  &NetAdapterInfoEntry::manufacturer,
                  &NetAdapterInfoEntry::model, &NetAdapterInfoEntry::subModel,
                  &NetAdapterInfoEntry::networkTech);
}

void freeGpuInfoEntry(GpuInfoEntry* one)
{
    releaseFields(one, &GpuInfoEntry::cardName, &GpuInfoEntry::manufacturer,
                  &GpuInfoEntry::partNumber, &GpuInfoEntry::serialNumber);
}

void freeMemInfoEntry(MemInfoEntry* one)
{
    releaseFields(one, &MemInfoEntry::name, &MemInfoEntry::manufacturer,
                  &MemInfoEntry::partNumber, &MemInfoEntry::serialNumber,
                  &MemInfoEntry::memoryType, &MemInfoEntry::formFactor,
                  &MemInfoEntry::bankLocator, &MemInfoEntry::deviceLocator,
                  &MemInfoEntry::ecc);
}

void freeCpuInfoEntry(CpuInfoEntry* one)
{
    releaseFields(one, &CpuInfoEntry::name, &CpuInfoEntry::manufacturer,
                  &CpuInfoEntry::version, &CpuInfoEntry::partNumber,
                  &CpuInfoEntry::serialNumber, &CpuInfoEntry::architecture);
}
