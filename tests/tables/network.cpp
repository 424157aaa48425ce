// SPDX-License-Identifier: Apache-2.0
#include "support/records.hpp"

namespace morvath::tests::network
{

constexpr auto service = "xyz.openbmc_project.Network";
constexpr auto nic = "xyz.openbmc_project.Network.EthernetInterface";
constexpr auto ip = "xyz.openbmc_project.Network.IP";
const std::string eth0 = "/xyz/openbmc_project/network/eth0";
const std::string origins = "xyz.openbmc_project.Network.IP.AddressOrigin.";

Machine interface(const Json& changes)
{
    const Json properties{{"InterfaceName", text("eth0")},
                          {"MACAddress", text("5a:00")},
                          {"NICEnabled", property("b", true)}};
    return Machine().owns(eth0, service, {{nic, changed(properties, changes)}});
}

Json addressWith(const Json& changes)
{
    const Json properties{{"Address", text("10.0.0.1")},
                          {"Origin", text(origins + "Static")},
                          {"PrefixLength", property("y", 24)}};
    return {{ip, changed(properties, changes)}};
}

Machine oneAddress(const Json& changes)
{
    return interface({}).owns(eth0 + "/b", service, addressWith(changes));
}

TEST(NetworkInterfaces, HaveTheNetmaskOfThePrefix)
{
    const std::pair<int, std::string> cases[]{
        {0, "0.0.0.0"},          {1, "128.0.0.0"}, {25, "255.255.255.128"},
        {32, "255.255.255.255"}, {33, "0.0.0.0"},  {288, "255.255.255.255"},
        {INT32_MIN, "0.0.0.0"},
    };
    for (const auto& [prefix, mask] : cases)
    {
        const Json change{{"PrefixLength", property("i", prefix)}};
        EXPECT_EQ(linesOf<getNetworkTableInfo>(oneAddress(change))[1],
                  "0|eth0|5a:00|10.0.0.1|null|" + mask + "|1|1|0|0|0");
    }
}

TEST(NetworkInterfaces, ShowTheFirstAddress)
{
    struct
    {
        const char* what;
        Machine machine;
        const char* outcome;
        std::string fields;
    } const cases[]{
        {"more than static",
         oneAddress({{"Origin", text(origins + "Static1")}}), "0",
         "10.0.0.1|null|255.255.255.0|2|1"},
        {"two, first without text",
         oneAddress({}).owns(eth0 + "/a", service,
                             addressWith({{"Address", nullptr},
                                          {"Origin", text("")},
                                          {"PrefixLength", text("64")}})),
         "0", "null|null|0.0.0.0|2|1"},
        {"none", interface({}), "0", "-|null|-|3|1"},
        {"not listed",
         oneAddress({}).fault({{"member", "GetSubTree"}, {"call", 2}},
                              {{"error", "com.example.Busy"}}),
         "0", "-|null|-|3|1"},
        {"no origin", oneAddress({{"Origin", nullptr}}), nullText,
         "10.0.0.1|null|null|0|1"},
        {"prefix in words", oneAddress({{"PrefixLength", text("/24")}}),
         "invalid argument: stoi", "10.0.0.1|null|null|1|1"},
        {"gone between listing and reading",
         oneAddress({}).fault({{"path", eth0 + "/b"}}, {{"vanished", true}}),
         "bus-error", "null|null|null|0|1"},
        {"no state", interface({{"NICEnabled", nullptr}}), nullText,
         "null|null|null|0|0"},
    };
    for (const auto& [what, machine, outcome, fields] : cases)
    {
        EXPECT_EQ(linesOf<getNetworkTableInfo>(machine),
                  (Lines{outcome, "0|eth0|5a:00|" + fields + "|0|0|0"}))
            << what;
    }
    EXPECT_EQ(linesOf<getNetworkTableInfo>(
                  interface({{"InterfaceName", nullptr}}))[0],
              nullText);
}

} // namespace morvath::tests::network
