// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "support/machine.hpp"
#include "support/result.hpp"

#include <gtest/gtest.h>

namespace morvath::tests::ntp
{

constexpr auto network = "xyz.openbmc_project.Network";
constexpr auto ethernet = "xyz.openbmc_project.Network.EthernetInterface";
const std::string root = "/xyz/openbmc_project/network/";

Json port(const Json& servers)
{
    return {{ethernet, {{"NTPServers", property("as", servers)}}}};
}

TEST(SetNtpServers, WritesEveryInterfaceOrNone)
{
    sim::Platform platform(sim::Scenario::standard());
    for (const auto* line :
         {"", "   ", "10.0.0.1 10.0.0.2 10.0.0.3 10.0.0.4",
          "10.0.0.1 10.0.0.2 10.0.0.3 x", "10.0.0.1 ntp.example", "::1",
          "10.0.0", "10.0.0.256", "10.0.0.1\t10.0.0.2", "10.0.0.1,10.0.0.2"})
    {
        EXPECT_EQ(setNtpServerIP(line), -3) << line;
    }
    EXPECT_TRUE(platform.calls().empty());

    EXPECT_EQ(setNtpServerIP("  10.0.0.1   10.0.0.2 255.255.255.255 "), 0);
    const auto held = [&](const std::string& name) {
        return platform.property(network, root + name, ethernet, "NTPServers");
    };
    const Json three{"10.0.0.1", "10.0.0.2", "255.255.255.255"};
    EXPECT_EQ(held("eth0"), three);
    EXPECT_EQ(held("eth1"), three);
    EXPECT_EQ(setNtpServerIP("10.0.0.1"), 0);
    EXPECT_EQ(held("eth1"), Json::array({"10.0.0.1"}));
}

TEST(SetNtpServers, MayBeIgnored)
{
    const auto machine = Machine()
                             .owns(root + "eth0", network, port({"10.0.0.5"}))
                             .behaves("ntp-servers-in-use");
    sim::Platform platform(machine.scenario());
    EXPECT_EQ(setNtpServerIP("10.0.0.1"), 0);
    EXPECT_EQ(readText(getNtpPreferServer), (TextResult{0, "10.0.0.5 "}));
}

TEST(NtpServers, AreThoseOfTheFirstInterface)
{
    const auto other =
        Machine().owns(root + "eth0", "com.example.Other", port({"10.9.9.9"}));
    struct
    {
        const char* what;
        Machine machine;
        TextResult result;
    } const cases[]{
        {"of another service", other, {0, nothing}},
        {"no servers",
         Machine().owns(root + "eth0", network, port(Json::array())),
         {0, nothing}},
        {"two interfaces",
         Machine(other)
             .owns(root + "eth2", network, port({"10.0.0.3"}))
             .owns(root + "eth1", network, port({"10.0.0.1", "10.0.0.2"})),
         {0, "10.0.0.1 10.0.0.2 "}},
    };
    for (const auto& one : cases)
    {
        sim::Platform platform(one.machine.scenario());
        EXPECT_EQ(readText(getNtpPreferServer), one.result) << one.what;
    }
}

} // namespace morvath::tests::ntp
