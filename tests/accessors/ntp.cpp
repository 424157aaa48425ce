// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "support/machine.hpp"
#include "support/result.hpp"

#include <gtest/gtest.h>

namespace morvath::tests
{
namespace
{

constexpr auto network = "xyz.openbmc_project.Network";
constexpr auto ethernet = "xyz.openbmc_project.Network.EthernetInterface";
const std::string root = "/xyz/openbmc_project/network/";
const std::string method = "xyz.openbmc_project.Time.Synchronization.Method.";

Json port(const Json& servers)
{
    return {{ethernet, {{"NTPServers", property("as", servers)}}}};
}

TEST(SyncMethod, IsReadAsACode)
{
    const std::pair<std::string, uint32_t> cases[]{
        {method + "NTP", 1},
        {method + "Manual", 0},
        {method + "NT", 1},
        {method + "Man", 0},
        {method, 1},
        {"x", 1},
        {method + "NTPx", 255},
        {method + "PTP", 255},
        {"NTP", 255},
        {"", 255},
    };
    for (const auto& [value, code] : cases)
    {
        sim::Platform platform(
            Machine()
                .owns("/xyz/openbmc_project/time/sync_method",
                      "xyz.openbmc_project.Settings",
                      {{"xyz.openbmc_project.Time.Synchronization",
                        {{"TimeSyncMethod", text(value)}}}})
                .scenario());
        EXPECT_EQ(readNumber(getNtpServerStatus), (NumberResult{0, code}))
            << value;
    }
    EXPECT_EQ(readNumber(getNtpServerStatus), (NumberResult{-1, nothing}));
}

TEST(SyncMethod, IsNtpForOneOnly)
{
    const std::pair<int32_t, const char*> cases[]{
        {0, "Manual"}, {1, "NTP"}, {2, "Manual"}, {-1, "Manual"}};
    sim::Platform platform(sim::Scenario::standard());
    for (const auto& [code, written] : cases)
    {
        EXPECT_EQ(setNtpServerStatus(code), 0);
        EXPECT_EQ(platform.calls().back().arguments,
                  Json({"xyz.openbmc_project.Time.Synchronization",
                        "TimeSyncMethod", text(method + written)}));
    }
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

TEST(SetNtpServers, ReportsOnlyARefusal)
{
    EXPECT_EQ(setNtpServerIP("10.0.0.1"), 0);
    auto machine = Machine().owns(root + "eth0", network, port({"10.0.0.5"}));
    {
        sim::Platform platform(
            Machine(machine).behaves("ntp-servers-in-use").scenario());
        EXPECT_EQ(setNtpServerIP("10.0.0.1"), 0);
        EXPECT_EQ(readText(getNtpPreferServer), (TextResult{0, "10.0.0.5 "}));
    }
    machine.fault({{"member", "Set"}}, {{"error", "com.example.Refused"}});
    sim::Platform platform(machine.scenario());
    EXPECT_EQ(setNtpServerIP("10.0.0.1"), -1);
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
        {"no network", Machine(), {-1, nothing}},
        {"of another service", other, {0, nothing}},
        {"no servers",
         Machine().owns(root + "eth0", network, port(Json::array())),
         {0, nothing}},
        {"two interfaces",
         Machine(other)
             .owns(root + "eth2", network, port({"10.0.0.3"}))
             .owns(root + "eth1", network, port({"10.0.0.1", "10.0.0.2"})),
         {0, "10.0.0.1 10.0.0.2 "}},
        {"unreadable",
         Machine()
             .owns(root + "eth0", network, port({"10.0.0.1"}))
             .fault({{"property", "NTPServers"}},
                    {{"error", "com.example.Failed"}}),
         {-1, nothing}},
    };
    for (const auto& one : cases)
    {
        sim::Platform platform(one.machine.scenario());
        EXPECT_EQ(readText(getNtpPreferServer), one.result) << one.what;
    }
}

} // namespace
} // namespace morvath::tests
