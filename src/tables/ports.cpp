// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "tables/table.hpp"

#include <sdbusplus/message/native_types.hpp>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <string>

using namespace morvath;

namespace
{

constexpr auto service = "xyz.openbmc_project.Smbios.MDR_V2";
constexpr auto motherboard =
    "/xyz/openbmc_project/inventory/system/chassis/motherboard";
constexpr auto adapterInterface =
    "xyz.openbmc_project.Inventory.Item.NetAdapter";
constexpr auto portInterface = "xyz.openbmc_project.Inventory.Item.NetworkPort";

constexpr std::size_t longestPath = 127;
constexpr uint64_t bitsPerGigabit = 1'000'000'000;
constexpr auto noRatio = "-";
// A ratio has up to 20 digits, then the point, one more and the sign.
constexpr std::size_t longestRatio = 23;

void storeGigabits(uint32_t& field, CText&& cell)
{
    field = static_cast<uint32_t>(std::stoull(cell.get()) / bitsPerGigabit);
}

constexpr std::array columns{
    column<&PortInfoEntry::name>("Name"),
    column<&PortInfoEntry::macAddress>("MacAddress"),
    column<&PortInfoEntry::rootBdf>("RootBDF"),
    column<&PortInfoEntry::portType>("PortType"),
    column<&PortInfoEntry::maxSpeedGbps, storeGigabits>("MaxSpeed"),
    column<&PortInfoEntry::lldpEnabled>("LldpEnabled"),
    column<&PortInfoEntry::phyLink>("PhyLink"),
    Column{"Packets"},
    Column{"Drop"},
};

constexpr std::size_t packetsCell = 7;
constexpr std::size_t dropCell = 8;

CText dropRatio(uint64_t packets, uint64_t drops)
{
    if (packets == 0)
    {
        return copyText(noRatio);
    }
    // The plain ratio with a percent sign, on purpose not times 100; drops
    // beyond all measure are written out in full.
    std::array<char, longestRatio + 1> text;
    std::snprintf(text.data(), text.size(), "%2.1f%%",
                  static_cast<double>(drops) / static_cast<double>(packets));
    return copyText(text.data());
}

void addDropRatio(PortInfoEntry& entry, Row row)
{
    const auto packets = std::stoull(row[packetsCell]);
    const auto drops = std::stoull(row[dropCell]);
    entry.dropRatio = dropRatio(packets, drops).release();
}

Table portsBelow(const char* adapter)
{
    return {adapter, portInterface, columns, finishWith<addDropRatio>};
}

struct Adapter
{
    explicit Adapter(const char* path) : path(path) {}

    const char* path;
    int32_t portCount = 0;
    RowSet ports{portCount};
};

/** Not a vector: the rows refer to their counter, so nothing may move. */
using Adapters = std::deque<Adapter>;

/** Ends at an adapter whose ports cannot be listed; those before it stay. */
Adapters readAdapters(const TextArray& paths)
{
    Adapters adapters;
    for (std::size_t index = 0; index < paths.size(); ++index)
    {
        auto& adapter = adapters.emplace_back(paths[index]);
        if (readRows(portsBelow(adapter.path), adapter.ports) != success)
        {
            break;
        }
    }
    return adapters;
}

int32_t countPorts(const Adapters& adapters)
{
    int32_t count = 0;
    for (const auto& adapter : adapters)
    {
        count += adapter.portCount;
    }
    return count;
}

void fillPorts(const Adapters& adapters, PortInfoEntry* record)
{
    for (const auto& adapter : adapters)
    {
        const auto name = sdbusplus::object_path(adapter.path).filename();
        const auto table = portsBelow(adapter.path);
        for (std::size_t index = 0; index < adapter.ports.size(); ++index)
        {
            record->adapterName = copyText(name.c_str()).release();
            fillRecord(table, adapter.ports[index], record++);
        }
    }
}

} // namespace

int32_t getNetPortTableInfo(PortInfoEntry** outArray, int32_t* outCount)
{
    char** found = nullptr;
    uint32_t adapterCount = 0;
    if (const auto code = getDbusInterface(
            service, motherboard, adapterInterface, &found, &adapterCount))
    {
        return code;
    }
    const TextArray paths(found, adapterCount);
    if (paths.size() == 0)
    {
        // Neither output is touched then, unlike in all other tables.
        return success;
    }
    const auto adapters = readAdapters(paths);
    *outCount = countPorts(adapters);
    *outArray = static_cast<PortInfoEntry*>(
        allocateRecords(*outCount, sizeof(PortInfoEntry)));
    if (!*outArray && *outCount != 0)
    {
        return outOfMemory;
    }
    fillPorts(adapters, *outArray);
    return success;
}

void free_port_entry_content(PortInfoEntry* one)
{
    releaseFields(one, &PortInfoEntry::adapterName, &PortInfoEntry::name,
                  &PortInfoEntry::macAddress, &PortInfoEntry::rootBdf,
                  &PortInfoEntry::portType, &PortInfoEntry::dropRatio);
}

int32_t setLldpEnalbed(const char* adapter, const char* port, int32_t enabled)
{
    std::array<char, longestPath + 1> path;
    const int length =
        std::snprintf(path.data(), path.size(), "%s/%s/NetworkPorts/%s",
                      motherboard, adapter, port);
    // A path that was cut off could be that of another port.
    if (length < 0 || static_cast<std::size_t>(length) > longestPath)
    {
        std::abort();
    }
    return setDbusPropertyBool(service, path.data(), portInterface,
                               "LldpEnabled", enabled != 0);
}
