#include "morvath.h"
#include "support/records.hpp"

namespace morvath::tests
{
namespace
{

using Interfaces = Records<getNetworkTableInfo, freeBmcNetworkInfoEntry>;

constexpr auto service = "xyz.openbmc_project.Network";
constexpr auto nic = "xyz.openbmc_project.Network.EthernetInterface";
constexpr auto ip = "xyz.openbmc_project.Network.IP";
const std::string root = "/xyz/openbmc_project/network/";
const std::string origins = "xyz.openbmc_project.Network.IP.AddressOrigin.";

const Json eth0{{"InterfaceName", text("eth0")},
                {"MACAddress", text("5a:00")},
                {"NICEnabled", property("b", true)}};
const Json address{{"Address", text("10.0.0.1")},
                   {"Origin", text(origins + "Static")},
                   {"PrefixLength", property("y", 24)}};

Machine oneAddress(const Json& changes)
{
    return Machine()
        .owns(root + "eth0", service, {{nic, eth0}})
        .owns(root + "eth0/ipv4/b", service, {{ip, changed(address, changes)}});
}

std::string lineOf(const BmcNetworkInfoEntry& entry)
{
    const auto& [id, name, mac, ipAddress, gateway, netmask, origin, enabled,
                 zero, one, two] = entry;
    return describe(id, name, mac, ipAddress, gateway, netmask, origin, enabled,
                    zero, one, two);
}

Lines linesOf(const Machine& machine)
{
    return tests::linesOf<Interfaces>(machine.scenario(), lineOf);
}

TEST(NetworkInterfaces, AreThoseOfTheServer)
{
    EXPECT_EQ(linesOf(Machine::server()),
              (Lines{"0",
                     "0|eth0|5a:3c:9b:10:22:04|10.20.30.41|10.20.30.1|"
                     "255.255.255.0|1|1|0|0|0",
                     "0|eth1|5a:3c:9b:10:22:05|192.168.70.12||255.255.252.0|2|"
                     "1|0|0|0"}));
}

TEST(NetworkInterfaces, HaveTheNetmaskOfThePrefix)
{
    const std::pair<int, std::string> cases[]{
        {0, "0.0.0.0"},           {1, "128.0.0.0"},
        {16, "255.255.0.0"},      {25, "255.255.255.128"},
        {32, "255.255.255.255"},  {33, "0.0.0.0"},
        {64, "0.0.0.0"},          {128, "0.0.0.0"},
        {288, "255.255.255.255"}, {-1, "0.0.0.0"},
        {INT32_MIN, "0.0.0.0"},
    };
    for (const auto& [prefix, mask] : cases)
    {
        const auto machine =
            oneAddress({{"PrefixLength", property("i", prefix)}});
        EXPECT_EQ(linesOf(machine), (Lines{"0", "0|eth0|5a:00|10.0.0.1|null|" +
                                                    mask + "|1|1|0|0|0"}))
            << prefix;
    }
}

TEST(NetworkInterfaces, ShowTheFirstAddress)
{
    const auto shown = [](const std::string& fields) {
        return Lines{"0", "0|eth0|5a:00|" + fields + "|1|0|0|0"};
    };
    const auto failed = [](const char* error, const std::string& fields) {
        return Lines{error, "0|eth0|5a:00|" + fields + "|1|0|0|0"};
    };
    const Json longer{{"Origin", text(origins + "Statics")}};
    const Json dhcp{{"Origin", text(origins + "DHCP")}};
    struct
    {
        const char* what;
        Machine machine;
        Lines expected;
    } const cases[]{
        {"DHCP", oneAddress(dhcp), shown("10.0.0.1|null|255.255.255.0|2")},
        {"text behind", oneAddress(longer),
         shown("10.0.0.1|null|255.255.255.0|2")},
        {"no origin in it", oneAddress({{"Origin", text("")}}),
         shown("10.0.0.1|null|255.255.255.0|2")},
        {"either family",
         oneAddress({}).owns(root + "eth0/ipv4/a", service,
                             {{ip,
                               {{"Address", text("fe80::1")},
                                {"Origin", text(origins + "LinkLocal")},
                                {"PrefixLength", property("y", 64)}}}}),
         shown("fe80::1|null|0.0.0.0|2")},
        {"address missing", oneAddress({{"Address", nullptr}}),
         shown("null|null|255.255.255.0|1")},
        {"none", Machine().owns(root + "eth0", service, {{nic, eth0}}),
         shown("-|null|-|3")},
        {"not listed",
         oneAddress({}).fault({{"member", "GetSubTree"}, {"call", 2}},
                              {{"error", "com.example.Busy"}}),
         shown("-|null|-|3")},
        {"origin missing", oneAddress({{"Origin", nullptr}}),
         failed(nullText, "10.0.0.1|null|null|0")},
        {"prefix missing", oneAddress({{"PrefixLength", nullptr}}),
         failed(nullText, "10.0.0.1|null|null|1")},
        {"prefix in words", oneAddress({{"PrefixLength", text("/24")}}),
         failed("invalid argument: stoi", "10.0.0.1|null|null|1")},
        {"gone between listing and reading",
         oneAddress({}).fault({{"path", root + "eth0/ipv4/b"}},
                              {{"vanished", true}}),
         failed("bus error", "null|null|null|0")},
    };
    for (const auto& one : cases)
    {
        EXPECT_EQ(linesOf(one.machine), one.expected) << one.what;
    }
}

TEST(NetworkInterfaces, FollowTheirProperties)
{
    expectVariants<Interfaces>(
        root + "eth0_100", nic, eth0, lineOf,
        {
            {"a VLAN has no path of its name",
             {{"InterfaceName", text("eth0.100")},
              {"DefaultGateway", text("10.0.0.254")}},
             {"0", "0|eth0.100|5a:00|-|10.0.0.254|-|3|1|0|0|0"}},
            {"no name",
             {{"InterfaceName", nullptr}},
             {nullText, "0|null|5a:00|null|null|null|0|1|0|0|0"}},
            {"no state",
             {{"NICEnabled", nullptr}},
             {nullText, "0|eth0|5a:00|null|null|null|0|0|0|0|0"}},
        });
}

} // namespace
} // namespace morvath::tests
