// SPDX-License-Identifier: Apache-2.0
#include "robustness/exports.hpp"

#include "morvath.h"
#include "robustness/allocations.hpp"
#include "support/records.hpp"

#include <cstdlib>
#include <iterator>
#include <new>
#include <string>
#include <variant>
#include <vector>

namespace morvath::tests
{
namespace
{

constexpr auto untouched = "untouched";

template <typename Call>
std::string resultOf(const Call& call)
{
    try
    {
        const AllocationWindow window;
        return std::to_string(call());
    }
    catch (const sdbusplus::exception::SdBusError&)
    {
        return "bus-error";
    }
    catch (const std::bad_alloc&)
    {
        return "no-memory";
    }
    catch (const std::bad_variant_access&)
    {
        return "another-type";
    }
}

std::string written(bool wasWritten, const std::string& value)
{
    return wasWritten ? value : untouched;
}

/** A getter with one text as its output. */
template <auto Get, auto... Arguments>
Effect text()
{
    char mark = 'm';
    char* value = &mark;
    auto result = resultOf([&] { return Get(Arguments..., &value); });
    if (value == &mark)
    {
        return {result, untouched};
    }
    Effect effect{result, textOf(value)};
    std::free(value);
    return effect;
}

/** A getter with one number as its output. */
template <typename Number, auto Get, auto... Arguments>
Effect number()
{
    constexpr Number mark = 77;
    Number value = mark;
    auto result = resultOf([&] { return Get(Arguments..., &value); });
    return {result, written(value != mark, std::to_string(value))};
}

/** A setter. */
template <auto Set, auto... Arguments>
Effect set()
{
    return {resultOf([] { return Set(Arguments...); }), untouched};
}

template <auto Get, auto Release>
Effect table()
{
    Records<Get, Release> table;
    auto result = resultOf([&] { return table.read(); });
    if (!table.records)
    {
        return {result, untouched};
    }
    std::string lines;
    for (int32_t index = 0; result == "0" && index < table.count; ++index)
    {
        lines += lineOf(table.records[index]) + '\n';
    }
    return {result, lines};
}

int32_t pwms(BmcSensorEntry** records, int32_t* count)
{
    return getCommonSensorTableInfo(records, count,
                                    "/xyz/openbmc_project/sensors/fan_pwm",
                                    "xyz.openbmc_project.Sensor.Value");
}

/** An array of texts, released and put into a line. */
std::string take(char** texts, std::size_t count)
{
    std::string line;
    for (std::size_t index = 0; index < count; ++index)
    {
        line += textOf(texts[index]) + '|';
        std::free(texts[index]);
    }
    std::free(texts);
    return line;
}

template <auto Get, auto... Arguments>
Effect texts()
{
    char** values = nullptr;
    uint32_t count = 0;
    auto result = resultOf([&] { return Get(Arguments..., &values, &count); });
    return {result, written(values, take(values, count))};
}

constexpr char network[] = "xyz.openbmc_project.Network";
constexpr char eth0[] = "/xyz/openbmc_project/network/eth0";
constexpr char ethernet[] = "xyz.openbmc_project.Network.EthernetInterface";
constexpr char supplies[] = "/xyz/openbmc_project/inventory/system/powersupply";
constexpr char supply[] = "xyz.openbmc_project.Inventory.Item.PowerSupply";
constexpr char anyOwner[] = "";

constexpr char timeService[] = "xyz.openbmc_project.Time.Manager";
constexpr char clockPath[] = "/xyz/openbmc_project/time/bmc";
constexpr char epoch[] = "xyz.openbmc_project.Time.EpochTime";
constexpr char elapsed[] = "Elapsed";

constexpr char smbios[] = "xyz.openbmc_project.Smbios.MDR_V2";
constexpr char bios[] =
    "/xyz/openbmc_project/inventory/system/chassis/motherboard/bios";
constexpr char choices[] = "xyz.openbmc_project.BIOSConfig.BiosConf";

constexpr char interfaceName[] = "InterfaceName";
constexpr char ntpServers[] = "NTPServers";
constexpr char emitLldp[] = "EmitLLDP";
constexpr char gateway[] = "DefaultGateway";
constexpr char bootType[] = "BootType";
constexpr char hyperThreading[] = "ProcessorHyperThreading";
constexpr char model[] = "Model";
constexpr char nic[] = "nic0";
constexpr char port[] = "port1";
constexpr char word[] = "AlwaysOn";
constexpr char address[] = "192.0.2.1";

const char* addresses[]{address, nullptr};

Effect tableData()
{
    const char* names[]{"Name", "Missing", "SerialNumber", "Present"};
    char*** rows = nullptr;
    int32_t count = 0;
    auto result = resultOf([&] {
        return getDbusTableData(supplies, supply, names, std::size(names),
                                &rows, &count);
    });
    std::string lines;
    for (int32_t index = 0; index < count; ++index)
    {
        lines += take(rows[index], std::size(names)) + '\n';
    }
    std::free(rows);
    return {result, written(rows, lines)};
}

Effect subTree()
{
    SubTree found;
    auto result =
        resultOf([&] { return getSubTree(supplies, supply, &found); });
    std::string line;
    for (const auto& [path, owners] : found)
    {
        line += path + '|' + owners.at(0).first + '|';
    }
    return {result, written(!found.empty(), line)};
}

Effect value()
{
    const PropertyValue mark = false;
    PropertyValue value = mark;
    auto result = resultOf([&] {
        return _getDbusProperty(network, eth0, ethernet, ntpServers, &value);
    });
    return {result, written(value != mark, std::to_string(value.index()))};
}

Effect setValue()
{
    const PropertyValue value = std::vector<std::string>{address};
    return {resultOf([&] {
                return _setDbusProperty(network, eth0, ethernet, ntpServers,
                                        &value);
            }),
            untouched};
}

Effect clock()
{
    uint32_t seconds = 0;
    auto result = resultOf([&] { return getTimeStamp(&seconds); });
    return {result, written(seconds != 0, "a time")};
}

Effect lastPart()
{
    const std::string dotted = "xyz.openbmc_project.long.enough.to.be.AWord";
    std::string last;
    auto result = resultOf([&] {
        last = getLastStr(dotted);
        return 0;
    });
    return {result, written(!last.empty(), last)};
}

// What becomes of a call, by the kind of function.
constexpr auto local = "";
constexpr auto single = "-1";
constexpr auto listed = "-1 bus-error";
constexpr auto accepted = "0";
// Two interfaces, then for each its list of addresses and those addresses.
constexpr auto interfaces = "-1 bus-error bus-error "
                            "0 bus-error bus-error 0 bus-error";
// For each adapter its list of ports and those ports.
constexpr auto ports = "-1 0 bus-error bus-error 0 bus-error bus-error";

#define TEXT(name)                           \
    {                                        \
#name, text < name>, single, single, \
    }
#define LISTED_TEXT(name)                    \
    {                                        \
#name, text < name>, listed, listed, \
    }
#define CHOICE(name)                                         \
    {                                                        \
#name, number < uint32_t, name>, single, single, "0" \
    }
#define CODE(name)                                       \
    {                                                    \
#name, number < uint32_t, name>, single, single, \
    }
#define SET(name, ...)                                    \
    {                                                     \
#name, set < name, __VA_ARGS__>, single, accepted \
    }
#define TABLE(name, release)                          \
    {                                                 \
#name, table < name, release>, listed, listed \
    }

const Export exports[]{
    {"getDbusPropertyString",
     text<getDbusPropertyString, network, eth0, ethernet, interfaceName>,
     single, single},
    {"getDbusPropertyVectorString",
     texts<getDbusPropertyVectorString, network, eth0, ethernet, ntpServers>,
     single, single},
    {"getDbusPropertyUint8",
     number<uint8_t, getDbusPropertyUint8, smbios, bios, choices, bootType>,
     single, single},
    {"getDbusPropertyBool",
     number<uint8_t, getDbusPropertyBool, smbios, bios, choices,
            hyperThreading>,
     single, single},
    SET(setDbusPropertyBool, network, eth0, ethernet, emitLldp, 1),
    SET(setDbusPropertyUint64, timeService, clockPath, epoch, elapsed, 1),
    SET(setDbusPropertyString, network, eth0, ethernet, gateway, address),
    SET(setDbusPropertyVectorString, network, eth0, ethernet, ntpServers,
        addresses),
    {"setDbusPropertyVectorStringWithoutPath",
     set<setDbusPropertyVectorStringWithoutPath, network, ethernet, ntpServers,
         addresses>,
     "0 -1", accepted},
    {"getDbusInterface", texts<getDbusInterface, anyOwner, supplies, supply>,
     single, single},
    {"getDbusTableData", tableData, listed, listed},
    {"getSubTree", subTree, single, single},
    {"_getDbusProperty", value, single, single},
    {"_setDbusProperty", setValue, single, accepted},
    {"getLastStr", lastPart, local, local},

    TEXT(getSystemManufacturer),
    TEXT(getSystemModel),
    TEXT(getSystemSerialNumber),
    TEXT(getSystemUUID),
    TEXT(getSystemAssetTag),
    TEXT(getSystemHostName),
    TEXT(getSystemConfModel),
    SET(setSystemAssetTag, model),
    SET(setSystemHostName, model),
    SET(setSystemConfModel, model),
    TEXT(getBiosVendor),
    TEXT(getBiosBuildDate),
    TEXT(getCpldFirmwareVersion),
    LISTED_TEXT(getBMCFirmwareVersion),
    LISTED_TEXT(getBiosFirmwareVersion),
    {"getBMCProperty", text<getBMCProperty, model>, single, single},
    TEXT(getBMCManufacturer),
    TEXT(getBMCModel),
    TEXT(getBMCSerialNumber),
    TEXT(getBMCPartNumber),
    TEXT(getProductAssetTag),
    TEXT(getProductManufacturer),
    TEXT(getProductPartNum),
    TEXT(getProductPrettyName),
    TEXT(getProductSerialNum),
    TEXT(getProductVersion),
    TEXT(getChassisPartNum),
    TEXT(getChassisPrettyName),
    TEXT(getChassisSerialNum),
    TEXT(getBoardBuildDate),
    TEXT(getBoardManufacturer),
    TEXT(getBoardPartNum),
    TEXT(getBoardPrettyName),
    TEXT(getBoardSerialNum),

    CHOICE(getBiosBootType),
    CHOICE(getBiosBootOrder0),
    CHOICE(getBiosBootOrder1),
    CHOICE(getBiosBootOrder2),
    CHOICE(getBiosBootOrder3),
    CHOICE(getBiosIPV4Support),
    CHOICE(getBiosIPV6Support),
    CHOICE(getBiosHyperThreading),

    TEXT(getSystemPowerState),
    CODE(getSystemPowerCtl),
    SET(setSystemPowerCtl, 1),
    TEXT(getPowerRestorePolicy),
    SET(setPowerRestorePolicy, word),
    {"getTimeStamp", clock, local, local},
    {"getTimeZone", number<int32_t, getTimeZone>, local, local},
    SET(setTimeStamp, 1),
    CODE(getNtpServerStatus),
    SET(setNtpServerStatus, 0),
    {"setNtpServerIP", set<setNtpServerIP, address>, "0 -1", accepted},
    TEXT(getNtpPreferServer),
    {"getBMCDeviceUUID", text<getBMCDeviceUUID>, local, local},

    TABLE(getPsuTableInfo, freePsuInfoEntry),
    TABLE(getPcieTableInfo, freePcieInfoEntry),
    TABLE(getNetAdapterTableInfo, free_adapter_entry_content),
    TABLE(getGpuInfoEntry, freeGpuInfoEntry),
    TABLE(getMemoryTableInfo, freeMemInfoEntry),
    TABLE(getCpuTableInfo, freeCpuInfoEntry),
    {"getCommonSensorTableInfo", table<pwms, freeBmcSensorEntry>, listed,
     listed},
    TABLE(getTempTableInfo, freeBmcSensorEntry),
    TABLE(getFanTableInfo, freeBmcSensorEntry),
    TABLE(getVoltageTableInfo, freeBmcSensorEntry),
    TABLE(getCurrentTableInfo, freeBmcSensorEntry),
    TABLE(getPowerTableInfo, freeBmcSensorEntry),
    TABLE(getPwmTableInfo, freeBmcSensorEntry),
    {"getNetworkTableInfo", table<getNetworkTableInfo, freeBmcNetworkInfoEntry>,
     interfaces, interfaces, untouched, true},
    {"getNetPortTableInfo", table<getNetPortTableInfo, free_port_entry_content>,
     ports, ports, untouched, true},
    SET(setLldpEnalbed, nic, port, 1),
    TABLE(getHddTableInfo, freeHddInfoEntry),
    {"getRaidControllerInfo",
     table<getRaidControllerInfo, freeRaidControllerEntry>, local, local},
    {"getRaidHddTableInfo", table<getRaidHddTableInfo, free_raid_hdd_entry>,
     local, local},
};

} // namespace

std::span<const Export> allExports()
{
    return exports;
}

} // namespace morvath::tests
