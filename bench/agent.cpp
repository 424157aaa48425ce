// SPDX-License-Identifier: Apache-2.0
#include "morvath.hpp"

#include <sdbusplus/bus.hpp>
#include <sys/resource.h>
#include <systemd/sd-bus.h>

#include <array>
#include <charconv>
#include <concepts>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

// What a management agent reads in a round: sensors, memory, processors, disks
// and network interfaces. Once with the library, once as programs on the
// platform usually do it; prints the names that were found, and what it took.

namespace
{

using Names = std::vector<std::string>;

/** With the library: the texts are there, in records. */
template <typename Table>
void addNames(Names& names, const Table& table, auto field)
{
    for (const auto& record : table)
    {
        names.emplace_back(record.*field);
    }
}

Names readWithLibrary()
{
    Names names;
    for (auto* sensors :
         {getTempTableInfo, getFanTableInfo, getVoltageTableInfo,
          getCurrentTableInfo, getPowerTableInfo, getPwmTableInfo})
    {
        addNames(names, morvath::read(sensors), &BmcSensorEntry::name);
    }
    addNames(names, morvath::read(getMemoryTableInfo), &MemInfoEntry::name);
    addNames(names, morvath::read(getCpuTableInfo), &CpuInfoEntry::name);
    addNames(names, morvath::read(getHddTableInfo), &HddInfoEntry::name);
    addNames(names, morvath::read(getNetworkTableInfo),
             &BmcNetworkInfoEntry::ifName);
    return names;
}

// With sdbusplus: a variant for every property, and a text for each that is
// wanted.

using Properties = std::vector<std::pair<std::string, PropertyValue>>;

sdbusplus::bus_t& connection()
{
    static sdbusplus::bus_t bus = [] {
        sd_bus* opened = nullptr;
        sd_bus_default(&opened);
        return sdbusplus::bus_t(opened, std::false_type());
    }();
    return bus;
}

struct Render
{
    std::string operator()(const std::string& text) const { return text; }
    std::string operator()(bool flag) const { return flag ? "1" : "0"; }
    std::string operator()(double number) const
    {
        std::array<char, 330> text;
        const auto end = std::to_chars(text.begin(), text.end(), number,
                                       std::chars_format::fixed, 2);
        return {text.begin(), end.ptr};
    }
    std::string operator()(std::integral auto number) const
    {
        return std::to_string(number);
    }
    template <typename Element>
    std::string operator()(const std::vector<Element>&) const
    {
        return {};
    }
};

struct Query
{
    const char* root;
    const char* interface;
    const char* nameProperty;
    const char* namePrefix;
    std::vector<std::string_view> properties;
};

SubTree list(const Query& query)
{
    constexpr auto mapper = "xyz.openbmc_project.ObjectMapper";
    auto request = connection().new_method_call(
        mapper, "/xyz/openbmc_project/object_mapper", mapper, "GetSubTree");
    request.append(std::string(query.root), int32_t{0},
                   std::vector<std::string>{query.interface});
    SubTree objects;
    connection().call(request).read(objects);
    return objects;
}

std::string read(const Query& query, const std::string& service,
                 const std::string& path)
{
    auto request = connection().new_method_call(
        service.c_str(), path.c_str(), "org.freedesktop.DBus.Properties",
        "GetAll");
    request.append(std::string());
    Properties properties;
    connection().call(request).read(properties);

    std::string name = path.substr(path.rfind('/') + 1);
    std::vector<std::string> cells(query.properties.size());
    for (const auto& [property, value] : properties)
    {
        if (property == query.nameProperty)
        {
            name = std::visit(Render(), value);
        }
        for (std::size_t index = 0; index < cells.size(); ++index)
        {
            if (property == query.properties[index])
            {
                cells[index] = std::visit(Render(), value);
            }
        }
    }
    return query.namePrefix + name;
}

const std::vector<std::string_view> sensorProperties{
    "CriticalAlarmHigh", "CriticalAlarmLow", "CriticalHigh", "CriticalLow",
    "WarningAlarmHigh",  "WarningAlarmLow",  "WarningHigh",  "WarningLow",
    "MaxValue",          "MinValue",         "Unit",         "Value"};

constexpr auto sensor = "xyz.openbmc_project.Sensor.Value";

const Query queries[]{
    {"/xyz/openbmc_project/sensors/temperature", sensor, "Name", "",
     sensorProperties},
    {"/xyz/openbmc_project/sensors/fan_tach", sensor, "Name", "",
     sensorProperties},
    {"/xyz/openbmc_project/sensors/voltage", sensor, "Name", "",
     sensorProperties},
    {"/xyz/openbmc_project/sensors/current", sensor, "Name", "",
     sensorProperties},
    {"/xyz/openbmc_project/sensors/power", sensor, "Name", "",
     sensorProperties},
    {"/xyz/openbmc_project/sensors/fan_pwm", sensor, "Name", "",
     sensorProperties},
    {"/",
     "xyz.openbmc_project.Inventory.Item.Dimm",
     "Name",
     "",
     {"Manufacturer", "PartNumber", "SerialNumber", "MemoryType", "FormFactor",
      "BankLocator", "MemoryDeviceLocator", "ECC", "MaxMemorySpeedInMhz",
      "MemorySizeInKB", "MemoryDataWidth", "Present"}},
    {"/",
     "xyz.openbmc_project.Inventory.Item.Cpu",
     "LocationCode",
     "CPU",
     {"Manufacturer", "Version", "PartNumber", "SerialNumber", "Architecture",
      "CurSpeedInMhz", "MaxSpeedInMhz", "CoreCount", "ThreadCount",
      "L1CacheKiB", "L2CacheKiB", "L3CacheKiB", "Present"}},
    {"/",
     "xyz.openbmc_project.Inventory.Item.Disk",
     "Name",
     "",
     {"Manufacturer", "Model", "SerialNumber", "MediaType", "Protocol",
      "Revision", "DiskUsage", "DiskTemp", "Capacity", "CapableSpeedGbs",
      "Present"}},
    {"/xyz/openbmc_project/network",
     "xyz.openbmc_project.Network.EthernetInterface",
     "InterfaceName",
     "",
     {"MACAddress", "NICEnabled", "DefaultGateway"}},
};

Names readWithBinding()
{
    Names names;
    for (const auto& query : queries)
    {
        for (const auto& [path, owners] : list(query))
        {
            names.push_back(read(query, owners.front().first, path));
        }
    }
    // The addresses of the network interfaces, as the library reads them.
    for (const char* name : {"eth0", "eth1"})
    {
        const auto root = std::string("/xyz/openbmc_project/network/") + name;
        const Query addresses{root.c_str(),
                              "xyz.openbmc_project.Network.IP",
                              "",
                              "",
                              {"Address", "Origin", "PrefixLength"}};
        for (const auto& [path, owners] : list(addresses))
        {
            read(addresses, owners.front().first, path);
        }
    }
    return names;
}

rusage used()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return usage;
}

long microseconds(const timeval& time)
{
    return time.tv_sec * 1'000'000L + time.tv_usec;
}

long cpu(const rusage& usage)
{
    return microseconds(usage.ru_utime) + microseconds(usage.ru_stime);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
    {
        std::fprintf(stderr, "usage: %s morvath|sdbusplus ROUNDS\n", argv[0]);
        return 2;
    }
    const auto read = std::string_view(argv[1]) == "morvath" ? readWithLibrary
                                                             : readWithBinding;
    const int rounds = std::atoi(argv[2]);

    // So that opening the connection does not count.
    char* uuid = nullptr;
    getBMCDeviceUUID(&uuid);
    std::free(uuid);
    connection();

    const auto before = used();
    auto names = read();
    const auto first = used();
    for (int round = 0; round < rounds; ++round)
    {
        names = read();
    }
    const auto after = used();
    std::size_t hash = 0;
    for (const auto& name : names)
    {
        hash = hash * 31 + std::hash<std::string>()(name);
    }
    std::printf("{\"names\": \"%zu %zx\", \"first\": %ld, \"faults\": %ld, "
                "\"cpu\": %.1f, \"peak\": %ld}\n",
                names.size(), hash, cpu(first) - cpu(before),
                first.ru_minflt - before.ru_minflt,
                rounds ? double(cpu(after) - cpu(first)) / rounds : 0.0,
                after.ru_maxrss);
    return 0;
}
