// SPDX-License-Identifier: Apache-2.0
#include "catalogue.hpp"
#include "record_table.hpp"

#include <morvath.h>

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
            {{"ratingWatts", "RATING [W]", Form::number}, &Entry::rating},
            {{"firmwareVersion", "FIRMWARE"}, &Entry::firmwareVersion},
        });
}

Table pcieSlots()
{
    using Entry = PcieInfoEntry;
    return recordTable<Entry>(
        "pcie-slots", "PCIe slots, empty ones too",
        {getPcieTableInfo, freePcieInfoEntry},
        {
            {{"name", "NAME"}, &Entry::name},
            {{"manufacturer", "MANUFACTURER"}, &Entry::manufacturer},
            {{"locationCode", "LOCATION"}, &Entry::locationCode},
            {{"present", "PRESENT"}, &Entry::present, yesOrNo},
        });
}

Table networkAdapters()
{
    using Entry = NetAdapterInfoEntry;
    return recordTable<Entry>(
        "network-adapters", "network adapters of the host",
        {getNetAdapterTableInfo, free_adapter_entry_content},
        {
            {{"name", "NAME"}, &Entry::name},
            {{"manufacturer", "MANUFACTURER"}, &Entry::manufacturer},
            {{"model", "MODEL"}, &Entry::model},
            {{"subModel", "VARIANT"}, &Entry::subModel},
            {{"networkTech", "NETWORK"}, &Entry::networkTech},
            {{"portNum", "PORTS"}, &Entry::portNum},
        });
}

Table gpus()
{
    using Entry = GpuInfoEntry;
    return recordTable<Entry>(
        "gpus", "graphics processors", {getGpuInfoEntry, freeGpuInfoEntry},
        {
            {{"cardName", "CARD"}, &Entry::cardName},
            {{"manufacturer", "MANUFACTURER"}, &Entry::manufacturer},
            {{"partNumber", "PART NUMBER"}, &Entry::partNumber},
            {{"serialNumber", "SERIAL NUMBER"}, &Entry::serialNumber},
            {{"totalMemory", "MEMORY"}, &Entry::totalMemory},
            {{"temperature", "TEMPERATURE"}, &Entry::temperature},
            {{"fanLevel", "FAN"}, &Entry::fanLevel},
            {{"currentPower", "POWER"}, &Entry::currentPower},
        });
}

Table memory()
{
    using Entry = MemInfoEntry;
    return recordTable<Entry>(
        "memory", "memory modules, empty sockets too",
        {getMemoryTableInfo, freeMemInfoEntry},
        {
            {{"name", "NAME"}, &Entry::name},
            {{"manufacturer", "MANUFACTURER"}, &Entry::manufacturer},
            {{"partNumber", "PART NUMBER"}, &Entry::partNumber},
            {{"serialNumber", "SERIAL NUMBER"}, &Entry::serialNumber},
            {{"memoryType", "TYPE"}, &Entry::memoryType},
            {{"formFactor", "FORM"}, &Entry::formFactor},
            {{"bankLocator", "BANK"}, &Entry::bankLocator},
            {{"deviceLocator", "SOCKET"}, &Entry::deviceLocator},
            {{"ecc", "ECC"}, &Entry::ecc},
            {{"maxSpeedMhz", "MAX [MHz]"}, &Entry::maxSpeedMhz},
            {{"sizeKiB", "SIZE [KiB]"}, &Entry::sizeKB},
            {{"dataWidthBits", "WIDTH [bit]"}, &Entry::dataWidth},
            {{"present", "PRESENT"}, &Entry::present, yesOrNo},
        });
}

Table processors()
{
    using Entry = CpuInfoEntry;
    return recordTable<Entry>(
        "processors", "processors, empty sockets too",
        {getCpuTableInfo, freeCpuInfoEntry},
        {
            {{"name", "NAME"}, &Entry::name},
            {{"manufacturer", "MANUFACTURER"}, &Entry::manufacturer},
            {{"version", "VERSION"}, &Entry::version},
            {{"partNumber", "PART NUMBER"}, &Entry::partNumber},
            {{"serialNumber", "SERIAL NUMBER"}, &Entry::serialNumber},
            {{"architecture", "ARCHITECTURE"}, &Entry::architecture},
            {{"curSpeedMhz", "NOW [MHz]"}, &Entry::curSpeedMhz},
            {{"maxSpeedMhz", "MAX [MHz]"}, &Entry::maxSpeedMhz},
            {{"coreCount", "CORES"}, &Entry::coreCount},
            {{"threadCount", "THREADS"}, &Entry::threadCount},
            {{"l1CacheKiB", "L1 [KiB]"}, &Entry::l1CacheKiB},
            {{"l2CacheKiB", "L2 [KiB]"}, &Entry::l2CacheKiB},
            {{"l3CacheKiB", "L3 [KiB]"}, &Entry::l3CacheKiB},
            {{"present", "PRESENT"}, &Entry::present, yesOrNo},
        });
}

} // namespace

std::vector<Table> inventoryTables()
{
    return {powerSupplies(), pcieSlots(), networkAdapters(),
            gpus(),          memory(),    processors()};
}

} // namespace morvath::tools
