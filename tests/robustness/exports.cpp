// SPDX-License-Identifier: Apache-2.0
#include "robustness/exports.hpp"

#include "morvath.h"
#include "robustness/allocations.hpp"
#include "support/records.hpp"

#include <cstdlib>
#include <iterator>
#include <string>
#include <vector>

namespace morvath::tests
{
namespace
{

constexpr auto untouched = "untouched";

template <typename Call>
std::string resultOf(const Call& call)
{
    return outcomeOf([&] {
        const AllocationWindow window;
        return call();
    });
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
constexpr Results local{"", "", untouched, false, "0"};
constexpr Results single{"-1", "-1"};
constexpr Results choice{"-1", "-1", "0"};
constexpr Results listed{"-1 bus-error", "-1 bus-error"};
// What is looked for everywhere, and not found.
constexpr Results anywhere{"-1 bus-error", "-1 bus-error", untouched, false,
                           "0"};
constexpr Results writing{"-1", "0"};
constexpr Results writingAll{"0 -1", "0", untouched, false, "0"};
// Two interfaces, then for each its list of addresses and those addresses.
constexpr auto addressFaults = "-1 bus-error bus-error "
                               "0 bus-error bus-error 0 bus-error";
constexpr Results interfaces{addressFaults, addressFaults, untouched, true};
// For each adapter its list of ports and those ports.
constexpr auto portFaults = "-1 0 bus-error bus-error 0 bus-error bus-error";
constexpr Results ports{portFaults, portFaults, untouched, true};

template <auto Call>
constexpr const char* nameOf()
{
    return __PRETTY_FUNCTION__;
}

template <auto Call>
constexpr Export on(const Results& results, const char* usual = nullptr)
{
    return {nameOf<Call>(), Call, results, usual};
}

template <auto Get>
constexpr Export fact(const char* usual)
{
    return on<text<Get>>(single, usual);
}

template <auto Get>
constexpr Export code(const Results& results, const char* usual)
{
    return on<number<uint32_t, Get>>(results, usual);
}

constexpr Export exports[]{
    on<text<getDbusPropertyString, network, eth0, ethernet, interfaceName>>(
        single, "eth0"),
    on<texts<getDbusPropertyVectorString, network, eth0, ethernet, ntpServers>>(
        single, "10.20.30.5|10.20.30.6|"),
    on<number<uint8_t, getDbusPropertyUint8, smbios, bios, choices, bootType>>(
        single, "1"),
    on<number<uint8_t, getDbusPropertyBool, smbios, bios, choices,
              hyperThreading>>(single, "1"),
    on<set<setDbusPropertyBool, network, eth0, ethernet, emitLldp, 1>>(writing),
    on<set<setDbusPropertyUint64, timeService, clockPath, epoch, elapsed, 1>>(
        writing),
    on<set<setDbusPropertyString, network, eth0, ethernet, gateway, address>>(
        writing),
    on<set<setDbusPropertyVectorString, network, eth0, ethernet, ntpServers,
           addresses>>(writing),
    on<set<setDbusPropertyVectorStringWithoutPath, network, ethernet,
           ntpServers, addresses>>(writingAll),
    on<texts<getDbusInterface, anyOwner, supplies, supply>>(single),
    on<tableData>(listed),
    on<subTree>(single),
    on<value>(single),
    on<setValue>(writing),
    on<lastPart>(local, "AWord"),

    fact<getSystemManufacturer>("Velmora Systems"),
    fact<getSystemModel>("VS2-2288"),
    fact<getSystemSerialNumber>("VSN26A0417"),
    fact<getSystemUUID>("7d1f0c52-8b3e-4f6a-9c27-15e8a4d2b6f0"),
    fact<getSystemAssetTag>("AT-004512"),
    fact<getSystemHostName>("rack7-node12"),
    fact<getSystemConfModel>("balanced"),
    on<set<setSystemAssetTag, model>>(writing),
    on<set<setSystemHostName, model>>(writing),
    on<set<setSystemConfModel, model>>(writing),
    fact<getBiosVendor>("Velmora Systems"),
    fact<getBiosBuildDate>("03/14/2026"),
    fact<getCpldFirmwareVersion>("1.07"),
    on<text<getBMCFirmwareVersion>>(listed, "3.2.1-r0"),
    on<text<getBiosFirmwareVersion>>(listed, "VSB4410.2.14.0"),
    on<text<getBMCProperty, model>>(single, "KM2600"),
    fact<getBMCManufacturer>("Kelvane Micro"),
    fact<getBMCModel>("KM2600"),
    fact<getBMCSerialNumber>("BM0071F3A9"),
    fact<getBMCPartNumber>("KM-BMC-26"),
    fact<getProductAssetTag>("DC4-R07-U12"),
    fact<getProductManufacturer>("Velmora Systems"),
    fact<getProductPartNum>("VS2-2288-B01"),
    fact<getProductPrettyName>("VS2-2288 two-socket server"),
    fact<getProductSerialNum>("VSN26A0417"),
    fact<getProductVersion>("02"),
    fact<getChassisPartNum>("VSC-2U-25B"),
    fact<getChassisPrettyName>("2U chassis, 25 bays"),
    fact<getChassisSerialNum>("CHS9930412"),
    fact<getBoardBuildDate>("2026-01-19 - 07:42:00 UTC"),
    fact<getBoardManufacturer>("Velmora Systems"),
    fact<getBoardPartNum>("VSB-4410-03"),
    fact<getBoardPrettyName>("VSB-4410"),
    fact<getBoardSerialNum>("MBQ60221873"),

    code<getBiosBootType>(choice, "1"),
    code<getBiosBootOrder0>(choice, "2"),
    code<getBiosBootOrder1>(choice, "1"),
    code<getBiosBootOrder2>(choice, "3"),
    code<getBiosBootOrder3>(choice, "255"),
    code<getBiosIPV4Support>(choice, "1"),
    code<getBiosIPV6Support>(choice, "0"),
    code<getBiosHyperThreading>(choice, "1"),

    fact<getSystemPowerState>("PowerOn"),
    code<getSystemPowerCtl>(single, "1"),
    on<set<setSystemPowerCtl, 1>>(writing),
    fact<getPowerRestorePolicy>("LastState"),
    on<set<setPowerRestorePolicy, word>>(writing),
    on<clock>(local, "a time"),
    on<number<int32_t, getTimeZone>>(local),
    on<set<setTimeStamp, 1>>(writing),
    code<getNtpServerStatus>(single, "1"),
    on<set<setNtpServerStatus, 0>>(writing),
    on<set<setNtpServerIP, address>>(writingAll),
    fact<getNtpPreferServer>("10.20.30.5 10.20.30.6 "),
    on<text<getBMCDeviceUUID>>(local),

    on<table<getPsuTableInfo, freePsuInfoEntry>>(listed),
    on<table<getPcieTableInfo, freePcieInfoEntry>>(anywhere),
    on<table<getNetAdapterTableInfo, free_adapter_entry_content>>(listed),
    on<table<getGpuInfoEntry, freeGpuInfoEntry>>(listed),
    on<table<getMemoryTableInfo, freeMemInfoEntry>>(anywhere),
    on<table<getCpuTableInfo, freeCpuInfoEntry>>(anywhere),
    on<table<pwms, freeBmcSensorEntry>>(listed),
    on<table<getTempTableInfo, freeBmcSensorEntry>>(listed),
    on<table<getFanTableInfo, freeBmcSensorEntry>>(listed),
    on<table<getVoltageTableInfo, freeBmcSensorEntry>>(listed),
    on<table<getCurrentTableInfo, freeBmcSensorEntry>>(listed),
    on<table<getPowerTableInfo, freeBmcSensorEntry>>(listed),
    on<table<getPwmTableInfo, freeBmcSensorEntry>>(listed),
    on<table<getNetworkTableInfo, freeBmcNetworkInfoEntry>>(interfaces),
    on<table<getNetPortTableInfo, free_port_entry_content>>(ports),
    on<set<setLldpEnalbed, nic, port, 1>>(writing),
    on<table<getHddTableInfo, freeHddInfoEntry>>(anywhere),
    on<table<getRaidControllerInfo, freeRaidControllerEntry>>(local),
    on<table<getRaidHddTableInfo, free_raid_hdd_entry>>(local),
};

} // namespace

std::span<const Export> allExports()
{
    return exports;
}

} // namespace morvath::tests
