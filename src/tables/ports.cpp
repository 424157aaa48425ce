// SPDX-License-Identifier: Apache-2.0
#include "base/texts.hpp"
#include "bus/mapper.hpp"
#include "morvath.h"
#include "tables/table.hpp"

#include <array>
#include <charconv>
#include <cstdlib>
#include <string>
#include <vector>

using namespace morvath;

namespace
{

constexpr auto service = "xyz.openbmc_project.Smbios.MDR_V2";
constexpr auto adapterRoot =
    "/xyz/openbmc_project/inventory/system/chassis/motherboard";
constexpr auto adapterInterface =
    "xyz.openbmc_project.Inventory.Item.NetAdapter";
constexpr auto portInterface = "xyz.openbmc_project.Inventory.Item.NetworkPort";

constexpr std::size_t longestPath = 127;
constexpr uint64_t bitsPerGigabit = 1'000'000'000;
constexpr auto noRatio = "-";
constexpr int ratioDecimals = 1;
// A ratio has up to 20 digits, then the point, one more and the sign.
constexpr std::size_t longestRatio = 23;

void storeGigabits(uint32_t& field, CText&& cell)
{
    field = static_cast<uint32_t>(unsignedNumber(cell.get()) / bitsPerGigabit);
}

constexpr std::array portColumns{
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

CText dropRatio(uint64_t packets, uint64_t drops)
{
    if (packets == 0)
    {
        return newText(noRatio);
    }
    // The plain ratio with a percent sign, on purpose not times 100; drops
    // beyond all measure are written out in full.
    std::array<char, longestRatio> text;
    auto* end =
        std::to_chars(text.begin(), text.end(),
                      static_cast<double>(drops) / static_cast<double>(packets),
                      std::chars_format::fixed, ratioDecimals)
            .ptr;
    *end++ = '%';
    return newText({text.begin(), end});
}

void addDropRatio(PortInfoEntry& entry, Row row)
{
    const auto packets = unsignedNumber(row[cell(portColumns, "Packets")]);
    const auto drops = unsignedNumber(row[cell(portColumns, "Drop")]);
    entry.dropRatio = dropRatio(packets, drops).release();
}

Table portsBelow(const char* adapter)
{
    return {adapter, portInterface, portColumns, finishWith<addDropRatio>};
}

struct Adapter
{
    const char* path;
    Rows ports;
};

/** Ends at an adapter whose ports cannot be listed; those before it stay. */
std::vector<Adapter> readAdapters(const std::vector<const char*>& paths)
{
    std::vector<Adapter> adapters;
    for (const char* path : paths)
    {
        Adapter adapter{path, {}};
        if (readRows(portsBelow(path), adapter.ports) != success)
        {
            break;
        }
        adapters.push_back(std::move(adapter));
    }
    return adapters;
}

void fillPorts(const Adapter& adapter, PortInfoEntry*& record)
{
    const auto name = lastSegment(adapter.path);
    const auto table = portsBelow(adapter.path);
    for (std::size_t index = 0; index < adapter.ports.size(); ++index)
    {
        storeText(record->adapterName, name);
        fillRecord(table, adapter.ports[index], record++);
    }
}

} // namespace

int32_t getNetPortTableInfo(PortInfoEntry** outArray, int32_t* outCount)
{
    ObjectList found;
    if (const auto code = found.query(adapterRoot, adapterInterface))
    {
        return code;
    }
    const auto paths = found.ownedBy(service);
    if (paths.empty())
    {
        // Neither output is touched then, unlike in all other tables.
        return success;
    }
    const auto adapters = readAdapters(paths);
    *outCount = 0;
    for (const auto& adapter : adapters)
    {
        *outCount += static_cast<int32_t>(adapter.ports.size());
    }
    if (const auto code = newRecords(*outCount, outArray))
    {
        return code;
    }
    auto* record = *outArray;
    for (const auto& adapter : adapters)
    {
        fillPorts(adapter, record);
    }
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
    std::string path = adapterRoot;
    path.append("/").append(required(adapter));
    path.append("/NetworkPorts/").append(required(port));
    if (path.size() > longestPath)
    {
        // What callers know of too long a path, which never was cut off.
        std::abort();
    }
    return setDbusPropertyBool(service, path.c_str(), portInterface,
                               "LldpEnabled", enabled != 0);
}
