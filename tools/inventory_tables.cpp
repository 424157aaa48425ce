// SPDX-License-Identifier: Apache-2.0
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
        "power-supplies", "power supplies and their firmware", getPsuTableInfo,
        {
            {{"name", "NAME", Form::text, always}, &Entry::name},
            {{"manufacturer", "MANUFACTURER", Form::text, 3},
             &Entry::manufacturer},
            {{"partNumber", "PART NUMBER", Form::text, 5}, &Entry::partNumber},
            {{"serialNumber", "SERIAL NUMBER"}, &Entry::serialNumber},
            {{"ratingWatts", "RATING", Form::number, 1, "W"}, &Entry::rating},
            {{"firmwareVersion", "FIRMWARE"}, &Entry::firmwareVersion},
        });
}

Table pcieSlots()
{
    using Entry = PcieInfoEntry;
    return recordTable<Entry>(
        "pcie-slots", "PCIe slots, empty ones too", getPcieTableInfo,
        {
            {{"name", "NAME", Form::text, always}, &Entry::name},
            {{"manufacturer", "MANUFACTURER", Form::text, 3},
             &Entry::manufacturer},
            {{"locationCode", "LOCATION"}, &Entry::locationCode},
            {{"present", "PRESENT"}, &Entry::present, yesOrNo},
        });
}

Table networkAdapters()
{
    using Entry = NetAdapterInfoEntry;
    return recordTable<Entry>(
        "network-adapters", "network adapters of the host",
        getNetAdapterTableInfo,
        {
            {{"name", "NAME", Form::text, always}, &Entry::name},
            {{"manufacturer", "MANUFACTURER", Form::text, 3},
             &Entry::manufacturer},
            {{"model", "MODEL"}, &Entry::model},
            {{"subModel", "VARIANT", Form::text, 4}, &Entry::subModel},
            {{"networkTech", "NETWORK"}, &Entry::networkTech},
            {{"portNum", "PORTS"}, &Entry::portNum},
        });
}

Table gpus()
{
    using Entry = GpuInfoEntry;
    return recordTable<Entry>(
        "gpus", "graphics processors", getGpuInfoEntry,
        {
            {{"cardName", "CARD", Form::text, always}, &Entry::cardName},
            {{"manufacturer", "MANUFACTURER", Form::text, 3},
             &Entry::manufacturer},
            {{"partNumber", "PART NUMBER", Form::text, 5}, &Entry::partNumber},
            {{"serialNumber", "SERIAL NUMBER"}, &Entry::serialNumber},
            {{"totalMemory", "MEMORY", Form::text, 1, "MiB"},
             &Entry::totalMemory},
            {{"temperature", "TEMP", Form::text, 1, "°C"}, &Entry::temperature},
            {{"fanLevel", "FAN", Form::text, 1, "%"}, &Entry::fanLevel},
            {{"currentPower", "POWER", Form::text, 1, "W"},
             &Entry::currentPower},
        });
}

Table memory()
{
    using Entry = MemInfoEntry;
    return recordTable<Entry>(
        "memory", "memory modules, empty sockets too", getMemoryTableInfo,
        {
            {{"name", "NAME", Form::text, always}, &Entry::name},
            {{"manufacturer", "MANUFACTURER", Form::text, 5},
             &Entry::manufacturer},
            {{"partNumber", "PART NUMBER", Form::text, seldom},
             &Entry::partNumber},
            {{"serialNumber", "SERIAL NUMBER"}, &Entry::serialNumber},
            {{"memoryType", "TYPE", Form::text, 2}, &Entry::memoryType},
            {{"formFactor", "FORM", Form::text, seldom}, &Entry::formFactor},
            {{"bankLocator", "BANK", Form::text, seldom}, &Entry::bankLocator},
            {{"deviceLocator", "SOCKET", Form::text, 6}, &Entry::deviceLocator},
            {{"ecc", "ECC", Form::text, seldom}, &Entry::ecc},
            {{"maxSpeedMhz", "MAX SPEED", Form::text, 4, "MHz"},
             &Entry::maxSpeedMhz},
            {{"sizeKiB", "SIZE", Form::text, always, "KiB"}, &Entry::sizeKB},
            {{"dataWidthBits", "WIDTH", Form::text, seldom, "bit"},
             &Entry::dataWidth},
            {{"present", "PRESENT"}, &Entry::present, yesOrNo},
        });
}

Table processors()
{
    using Entry = CpuInfoEntry;
    return recordTable<Entry>(
        "processors", "processors, empty sockets too", getCpuTableInfo,
        {
            {{"name", "NAME", Form::text, always}, &Entry::name},
            {{"manufacturer", "MANUFACTURER", Form::text, 5},
             &Entry::manufacturer},
            {{"version", "VERSION", Form::text, 2}, &Entry::version},
            {{"partNumber", "PART NUMBER", Form::text, seldom},
             &Entry::partNumber},
            {{"serialNumber", "SERIAL NUMBER", Form::text, seldom},
             &Entry::serialNumber},
            {{"architecture", "ARCHITECTURE", Form::text, seldom},
             &Entry::architecture},
            {{"curSpeedMhz", "SPEED", Form::text, 6, "MHz"},
             &Entry::curSpeedMhz},
            {{"maxSpeedMhz", "MAX SPEED", Form::text, 4, "MHz"},
             &Entry::maxSpeedMhz},
            {{"coreCount", "CORES"}, &Entry::coreCount},
            {{"threadCount", "THREADS"}, &Entry::threadCount},
            {{"l1CacheKiB", "L1", Form::text, seldom, "KiB"},
             &Entry::l1CacheKiB},
            {{"l2CacheKiB", "L2", Form::text, seldom, "KiB"},
             &Entry::l2CacheKiB},
            {{"l3CacheKiB", "L3", Form::text, seldom, "KiB"},
             &Entry::l3CacheKiB},
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
