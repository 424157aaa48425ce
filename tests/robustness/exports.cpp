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

template <typename Record>
struct RecordList
{
    Records<Record> table;

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

constexpr auto network = "xyz.openbmc_project.Network";
constexpr auto eth0 = "/xyz/openbmc_project/network/eth0";
constexpr auto ethernet = "xyz.openbmc_project.Network.EthernetInterface";
constexpr auto supplies = "/xyz/openbmc_project/inventory/system/powersupply";
constexpr auto supply = "xyz.openbmc_project.Inventory.Item.PowerSupply";
constexpr auto smbios = "xyz.openbmc_project.Smbios.MDR_V2";
constexpr auto bios =
    "/xyz/openbmc_project/inventory/system/chassis/motherboard/bios";
constexpr auto choices = "xyz.openbmc_project.BIOSConfig.BiosConf";
constexpr auto ntpServers = "NTPServers";
constexpr auto word = "AlwaysOn";
constexpr auto address = "192.0.2.1";

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

/** Each call of a function has these arguments. */
template <typename Outputs>
Export on(const char* name, auto function, const Results& results,
          const char* usual = nullptr, auto... arguments)
{
    const auto call = [function](auto... all) -> Effect {
        Outputs outputs;
        auto result = outcomeOf([&] {
            const AllocationWindow window;
            return outputs.of(function, all...);
        });
        return {result, outputs.taken()};
    };
    const auto nulls = [call, arguments...]() mutable {
        std::vector<std::string> outcomes;
        [[maybe_unused]] const auto addNull = [&](auto& argument) {
            if constexpr (std::is_pointer_v<std::decay_t<decltype(argument)>>)
            {
                const auto kept = std::exchange(argument, nullptr);
                outcomes.push_back(call(arguments...).result);
                argument = kept;
            }
        };
        (addNull(arguments), ...);
        return outcomes;
    };
    return {name,
            [call, arguments...] { return call(arguments...); },
            nulls,
            results,
            std::is_same_v<Outputs, NoOutput>,
            usual};
}

Export fact(const char* name, auto function, const char* usual)
{
    return on<OneOutput<char*>>(name, function, single, usual);
}

Export code(const char* name, auto function, const Results& results,
            const char* usual)
{
    return on<OneOutput<uint32_t>>(name, function, results, usual);
}

template <typename Record, typename... Parameters>
Export table(const char* name,
             int32_t (*get)(Record**, int32_t*, Parameters...),
             const Results& results, auto... arguments)
{
    return on<RecordList<Record>>(name, get, results, nullptr, arguments...);
}

#define OF(function) #function, function
const Export exports[]{
    on<OneOutput<char*>>(OF(getDbusPropertyString), single, "eth0", network,
                         eth0, ethernet, "InterfaceName"),
    on<TextList>(OF(getDbusPropertyVectorString), single,
                 "10.20.30.5|10.20.30.6|", network, eth0, ethernet, ntpServers),
    on<OneOutput<uint8_t>>(OF(getDbusPropertyUint8), single, "1", smbios, bios,
                           choices, "BootType"),
    on<OneOutput<uint8_t>>(OF(getDbusPropertyBool), single, "1", smbios, bios,
                           choices, "ProcessorHyperThreading"),
    on<TextList>(OF(getDbusInterface), single, nullptr, "", supplies, supply),
    on<RowsOfCells>(OF(getDbusTableData), listed, nullptr, supplies, supply,
                    cells, cellCount),
    on<OneOutput<SubTree>>(OF(getSubTree), single, nullptr, supplies, supply),
    on<OneOutput<PropertyValue>>(OF(_getDbusProperty), single, nullptr, network,
                                 eth0, ethernet, ntpServers),

    fact(OF(getSystemManufacturer), "Velmora Systems"),
    fact(OF(getSystemModel), "VS2-2288"),
    fact(OF(getSystemSerialNumber), "VSN26A0417"),
    fact(OF(getSystemUUID), "7d1f0c52-8b3e-4f6a-9c27-15e8a4d2b6f0"),
    fact(OF(getSystemAssetTag), "AT-004512"),
    fact(OF(getSystemHostName), "rack7-node12"),
    fact(OF(getSystemConfModel), "balanced"),
    fact(OF(getBiosVendor), "Velmora Systems"),
    fact(OF(getBiosBuildDate), "03/14/2026"),
    fact(OF(getCpldFirmwareVersion), "1.07"),
    on<OneOutput<char*>>(OF(getBMCFirmwareVersion), listed, "3.2.1-r0"),
    on<OneOutput<char*>>(OF(getBiosFirmwareVersion), listed, "VSB4410.2.14.0"),
    on<OneOutput<char*>>(OF(getBMCProperty), single, "KM2600", "Model"),
    fact(OF(getBMCManufacturer), "Kelvane Micro"),
    fact(OF(getBMCModel), "KM2600"),
    fact(OF(getBMCSerialNumber), "BM0071F3A9"),
    fact(OF(getBMCPartNumber), "KM-BMC-26"),
    fact(OF(getProductAssetTag), "DC4-R07-U12"),
    fact(OF(getProductManufacturer), "Velmora Systems"),
    fact(OF(getProductPartNum), "VS2-2288-B01"),
    fact(OF(getProductPrettyName), "VS2-2288 two-socket server"),
    fact(OF(getProductSerialNum), "VSN26A0417"),
    fact(OF(getProductVersion), "02"),
    fact(OF(getChassisPartNum), "VSC-2U-25B"),
    fact(OF(getChassisPrettyName), "2U chassis, 25 bays"),
    fact(OF(getChassisSerialNum), "CHS9930412"),
    fact(OF(getBoardBuildDate), "2026-01-19 - 07:42:00 UTC"),
    fact(OF(getBoardManufacturer), "Velmora Systems"),
    fact(OF(getBoardPartNum), "VSB-4410-03"),
    fact(OF(getBoardPrettyName), "VSB-4410"),
    fact(OF(getBoardSerialNum), "MBQ60221873"),

    code(OF(getBiosBootType), choice, "1"),
    code(OF(getBiosBootOrder0), choice, "2"),
    code(OF(getBiosBootOrder1), choice, "1"),
    code(OF(getBiosBootOrder2), choice, "3"),
    code(OF(getBiosBootOrder3), choice, "255"),
    code(OF(getBiosIPV4Support), choice, "1"),
    code(OF(getBiosIPV6Support), choice, "0"),
    code(OF(getBiosHyperThreading), choice, "1"),

    fact(OF(getSystemPowerState), "PowerOn"),
    code(OF(getSystemPowerCtl), single, "1"),
    fact(OF(getPowerRestorePolicy), "LastState"),
    on<Clock>(OF(getTimeStamp), local, "time"),
    on<OneOutput<int32_t>>(OF(getTimeZone), local),
    code(OF(getNtpServerStatus), single, "1"),
    fact(OF(getNtpPreferServer), "10.20.30.5 10.20.30.6 "),
    on<OneOutput<char*>>(OF(getBMCDeviceUUID), local),

    table(OF(getPsuTableInfo), listed),
    table(OF(getPcieTableInfo), anywhere),
    table(OF(getNetAdapterTableInfo), listed),
    table(OF(getGpuInfoEntry), listed),
    table(OF(getMemoryTableInfo), anywhere),
    table(OF(getCpuTableInfo), anywhere),
    table(OF(getCommonSensorTableInfo), listed,
          "/xyz/openbmc_project/sensors/fan_pwm",
          "xyz.openbmc_project.Sensor.Value"),
    table(OF(getTempTableInfo), listed),
    table(OF(getFanTableInfo), listed),
    table(OF(getVoltageTableInfo), listed),
    table(OF(getCurrentTableInfo), listed),
    table(OF(getPowerTableInfo), listed),
    table(OF(getPwmTableInfo), listed),
    table(OF(getNetworkTableInfo), interfaces),
    table(OF(getNetPortTableInfo), ports),
    table(OF(getHddTableInfo), anywhere),
    table(OF(getRaidControllerInfo), local),
    table(OF(getRaidHddTableInfo), local),

    // What these change stays changed.
    on<NoOutput>(OF(setDbusPropertyBool), writing, "EmitLLDP true", network,
                 eth0, ethernet, "EmitLLDP", 2),
    on<NoOutput>(
        OF(setDbusPropertyUint64), writing, "Elapsed 18446744073709551615",
        "xyz.openbmc_project.Time.Manager", "/xyz/openbmc_project/time/bmc",
        "xyz.openbmc_project.Time.EpochTime", "Elapsed", UINT64_MAX),
    on<NoOutput>(OF(setDbusPropertyString), writing,
                 R"(DefaultGateway "192.0.2.1")", network, eth0, ethernet,
                 "DefaultGateway", address),
    on<NoOutput>(OF(setDbusPropertyVectorString), writing, newServersSent,
                 network, eth0, ethernet, ntpServers, addresses),
    on<NoOutput>(OF(setDbusPropertyVectorStringWithoutPath), writingAll,
                 newServersSent, network, ethernet, ntpServers, addresses),
    on<NoOutput>(OF(_setDbusProperty), writing, newServersSent, network, eth0,
                 ethernet, ntpServers, &newServers),
    on<NoOutput>(OF(setSystemAssetTag), writing, R"(AssetTag "AlwaysOn")",
                 word),
    on<NoOutput>(OF(setSystemHostName), writing, R"(HostName "AlwaysOn")",
                 word),
    on<NoOutput>(OF(setSystemConfModel), writing, R"(ConfModel "AlwaysOn")",
                 word),
    on<NoOutput>(OF(setSystemPowerCtl), writing,
                 R"(RequestedHostTransition "xyz.openbmc_project.State.Host.)"
                 R"(Transition.On")",
                 1),
    on<NoOutput>(OF(setPowerRestorePolicy), writing,
                 R"(PowerRestorePolicy "xyz.openbmc_project.Control.Power.)"
                 R"(RestorePolicy.Policy.AlwaysOn")",
                 word),
    on<NoOutput>(OF(setTimeStamp), writing, "Elapsed 1000000", 1),
    on<NoOutput>(OF(setNtpServerStatus), writing,
                 R"(TimeSyncMethod "xyz.openbmc_project.Time.Synchronization.)"
                 R"(Method.Manual")",
                 0),
    on<NoOutput>(OF(setNtpServerIP), writingAll, newServersSent, address),
    on<NoOutput>(OF(setLldpEnalbed), writing, "LldpEnabled true", "nic0",
                 "port1", 1),
};

} // namespace

std::span<const Export> allExports() { return exports; }

} // namespace morvath::tests
