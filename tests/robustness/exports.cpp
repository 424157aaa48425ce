// SPDX-License-Identifier: Apache-2.0
#include "robustness/exports.hpp"

#include "morvath.h"
#include "robustness/allocations.hpp"
#include "support/records.hpp"

#include <cstdlib>
#include <iterator>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace morvath::tests
{
namespace
{

constexpr auto untouched = "untouched";

/** Releases a text. */
std::string take(char* text)
{
    auto taken = textOf(text);
    std::free(text);
    return taken;
}

std::string take(int64_t number) { return textOf(number); }

std::string take(const SubTree& tree)
{
    std::string line;
    for (const auto& [path, owners] : tree)
    {
        line += path + '|' + owners.at(0).first + '|';
    }
    return line;
}

std::string take(const PropertyValue& value)
{
    return std::to_string(value.index());
}

// What an output has until it is written.
char aText = 'm';
template <typename Value>
const Value mark = 77;
template <>
char* const mark<char*> = &aText;
template <>
const SubTree mark<SubTree>{};
template <>
const PropertyValue mark<PropertyValue> = false;

// The outputs of one call, by the kind of function: how they are handed over,
// and what is in them afterwards.

struct NoOutput
{
    auto of(auto set, auto... arguments) { return set(arguments...); }

    std::string taken() { return untouched; }
};

template <typename Value>
struct OneOutput
{
    Value value = mark<Value>;

    auto of(auto get, auto... arguments) { return get(arguments..., &value); }

    std::string taken()
    {
        return value == mark<Value> ? untouched : take(value);
    }
};

struct Clock : OneOutput<uint32_t>
{
    std::string taken() { return value == mark<uint32_t> ? untouched : "time"; }
};

struct TextList
{
    char** texts = nullptr;
    uint32_t count = 0;

    auto of(auto get, auto... arguments)
    {
        return get(arguments..., &texts, &count);
    }

    std::string taken()
    {
        return texts ? tests::taken(texts, count) : untouched;
    }
};

template <auto Get>
struct RecordList
{
    RecordsOf<Get> table;

    auto of(auto get, auto... arguments)
    {
        return table.fill([&](auto** records, int32_t* count) {
            return get(records, count, arguments...);
        });
    }

    std::string taken()
    {
        std::string lines;
        for (const auto& record : table)
        {
            lines += lineOf(record) + '\n';
        }
        return table.data() ? lines : untouched;
    }
};

const char* cells[]{"Name", "Missing", "SerialNumber", "Present"};
constexpr int32_t cellCount = std::size(cells);

struct RowsOfCells
{
    char*** rows = nullptr;
    int32_t count = 0;

    auto of(auto get, auto... arguments)
    {
        return get(arguments..., &rows, &count);
    }

    std::string taken()
    {
        std::string lines;
        for (int32_t index = 0; index < count; ++index)
        {
            lines += tests::taken(rows[index], cellCount) + '\n';
        }
        const bool isWritten = rows;
        std::free(rows);
        return isWritten ? lines : untouched;
    }
};

/** A function with its arguments. */
template <typename Outputs, auto Function, auto... Arguments>
struct Call
{
    static Effect effect()
    {
        Outputs outputs;
        auto result = outcomeOf([&] {
            const AllocationWindow window;
            return outputs.of(Function, Arguments...);
        });
        return {result, outputs.taken()};
    }

    static std::vector<std::string> nulls()
    {
        std::vector<std::string> outcomes;
        [&]<std::size_t... Indices>(std::index_sequence<Indices...>)
        {
            (addNull<Indices>(outcomes), ...);
        }
        (std::make_index_sequence<sizeof...(Arguments)>());
        return outcomes;
    }

  private:
    template <std::size_t Index>
    static void addNull(std::vector<std::string>& outcomes)
    {
        std::tuple arguments(Arguments...);
        auto& argument = std::get<Index>(arguments);
        if constexpr (std::is_pointer_v<std::decay_t<decltype(argument)>>)
        {
            argument = nullptr;
            Outputs outputs;
            outcomes.push_back(outcomeOf([&] {
                return std::apply(
                    [&](auto... all) { return outputs.of(Function, all...); },
                    arguments);
            }));
        }
    }
};

template <auto Get, auto... Arguments>
using Text = Call<OneOutput<char*>, Get, Arguments...>;
template <typename Value, auto Get, auto... Arguments>
using Number = Call<OneOutput<Value>, Get, Arguments...>;
template <auto Get, auto... Arguments>
using Texts = Call<TextList, Get, Arguments...>;
template <auto Get, auto... Arguments>
using Table = Call<RecordList<Get>, Get, Arguments...>;
template <auto Set, auto... Arguments>
using Setter = Call<NoOutput, Set, Arguments...>;

constexpr char network[] = "xyz.openbmc_project.Network";
constexpr char eth0[] = "/xyz/openbmc_project/network/eth0";
constexpr char ethernet[] = "xyz.openbmc_project.Network.EthernetInterface";
constexpr char supplies[] = "/xyz/openbmc_project/inventory/system/powersupply";
constexpr char supply[] = "xyz.openbmc_project.Inventory.Item.PowerSupply";
constexpr char anyOwner[] = "";
constexpr char pwms[] = "/xyz/openbmc_project/sensors/fan_pwm";
constexpr char sensor[] = "xyz.openbmc_project.Sensor.Value";

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

const PropertyValue newServers = std::vector<std::string>{address};
constexpr auto newServersSent = R"(NTPServers ["192.0.2.1"])";

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

template <typename Call>
constexpr Export on(const Results& results, const char* usual = nullptr)
{
    return {__PRETTY_FUNCTION__, Call::effect, Call::nulls, results, usual};
}

template <auto Get>
constexpr Export fact(const char* usual)
{
    return on<Text<Get>>(single, usual);
}

template <auto Get>
constexpr Export code(const Results& results, const char* usual)
{
    return on<Number<uint32_t, Get>>(results, usual);
}

constexpr Export exports[]{
    on<Text<getDbusPropertyString, network, eth0, ethernet, interfaceName>>(
        single, "eth0"),
    on<Texts<getDbusPropertyVectorString, network, eth0, ethernet, ntpServers>>(
        single, "10.20.30.5|10.20.30.6|"),
    on<Number<uint8_t, getDbusPropertyUint8, smbios, bios, choices, bootType>>(
        single, "1"),
    on<Number<uint8_t, getDbusPropertyBool, smbios, bios, choices,
              hyperThreading>>(single, "1"),
    on<Setter<setDbusPropertyBool, network, eth0, ethernet, emitLldp, 2>>(
        writing, "EmitLLDP true"),
    on<Setter<setDbusPropertyUint64, timeService, clockPath, epoch, elapsed,
              UINT64_MAX>>(writing, "Elapsed 18446744073709551615"),
    on<Setter<setDbusPropertyString, network, eth0, ethernet, gateway,
              address>>(writing, R"(DefaultGateway "192.0.2.1")"),
    on<Setter<setDbusPropertyVectorString, network, eth0, ethernet, ntpServers,
              addresses>>(writing, newServersSent),
    on<Setter<setDbusPropertyVectorStringWithoutPath, network, ethernet,
              ntpServers, addresses>>(writingAll, newServersSent),
    on<Texts<getDbusInterface, anyOwner, supplies, supply>>(single),
    on<Call<RowsOfCells, getDbusTableData, supplies, supply, cells, cellCount>>(
        listed),
    on<Call<OneOutput<SubTree>, getSubTree, supplies, supply>>(single),
    on<Call<OneOutput<PropertyValue>, _getDbusProperty, network, eth0, ethernet,
            ntpServers>>(single),
    on<Setter<_setDbusProperty, network, eth0, ethernet, ntpServers,
              &newServers>>(writing, newServersSent),

    fact<getSystemManufacturer>("Velmora Systems"),
    fact<getSystemModel>("VS2-2288"),
    fact<getSystemSerialNumber>("VSN26A0417"),
    fact<getSystemUUID>("7d1f0c52-8b3e-4f6a-9c27-15e8a4d2b6f0"),
    fact<getSystemAssetTag>("AT-004512"),
    fact<getSystemHostName>("rack7-node12"),
    fact<getSystemConfModel>("balanced"),
    on<Setter<setSystemAssetTag, word>>(writing, R"(AssetTag "AlwaysOn")"),
    on<Setter<setSystemHostName, word>>(writing, R"(HostName "AlwaysOn")"),
    on<Setter<setSystemConfModel, word>>(writing, R"(ConfModel "AlwaysOn")"),
    fact<getBiosVendor>("Velmora Systems"),
    fact<getBiosBuildDate>("03/14/2026"),
    fact<getCpldFirmwareVersion>("1.07"),
    on<Text<getBMCFirmwareVersion>>(listed, "3.2.1-r0"),
    on<Text<getBiosFirmwareVersion>>(listed, "VSB4410.2.14.0"),
    on<Text<getBMCProperty, model>>(single, "KM2600"),
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
    on<Setter<setSystemPowerCtl, 1>>(
        writing, R"(RequestedHostTransition "xyz.openbmc_project.State.Host.)"
                 R"(Transition.On")"),
    fact<getPowerRestorePolicy>("LastState"),
    on<Setter<setPowerRestorePolicy, word>>(
        writing, R"(PowerRestorePolicy "xyz.openbmc_project.Control.Power.)"
                 R"(RestorePolicy.Policy.AlwaysOn")"),
    on<Call<Clock, getTimeStamp>>(local, "time"),
    on<Number<int32_t, getTimeZone>>(local),
    on<Setter<setTimeStamp, 1>>(writing, "Elapsed 1000000"),
    code<getNtpServerStatus>(single, "1"),
    on<Setter<setNtpServerStatus, 0>>(
        writing, R"(TimeSyncMethod "xyz.openbmc_project.Time.Synchronization.)"
                 R"(Method.Manual")"),
    on<Setter<setNtpServerIP, address>>(writingAll, newServersSent),
    fact<getNtpPreferServer>("10.20.30.5 10.20.30.6 "),
    on<Text<getBMCDeviceUUID>>(local),

    on<Table<getPsuTableInfo>>(listed),
    on<Table<getPcieTableInfo>>(anywhere),
    on<Table<getNetAdapterTableInfo>>(listed),
    on<Table<getGpuInfoEntry>>(listed),
    on<Table<getMemoryTableInfo>>(anywhere),
    on<Table<getCpuTableInfo>>(anywhere),
    on<Table<getCommonSensorTableInfo, pwms, sensor>>(listed),
    on<Table<getTempTableInfo>>(listed),
    on<Table<getFanTableInfo>>(listed),
    on<Table<getVoltageTableInfo>>(listed),
    on<Table<getCurrentTableInfo>>(listed),
    on<Table<getPowerTableInfo>>(listed),
    on<Table<getPwmTableInfo>>(listed),
    on<Table<getNetworkTableInfo>>(interfaces),
    on<Table<getNetPortTableInfo>>(ports),
    on<Setter<setLldpEnalbed, nic, port, 1>>(writing, "LldpEnabled true"),
    on<Table<getHddTableInfo>>(anywhere),
    on<Table<getRaidControllerInfo>>(local),
    on<Table<getRaidHddTableInfo>>(local),
};

} // namespace

std::span<const Export> allExports() { return exports; }

} // namespace morvath::tests
