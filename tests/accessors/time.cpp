// SPDX-License-Identifier: Apache-2.0
#include "morvath.hpp"
#include "support/machine.hpp"

#include <gtest/gtest.h>
#include <time.h>

namespace morvath::tests::time_accessors
{

constexpr auto network = "xyz.openbmc_project.Network";
constexpr auto ethernet = "xyz.openbmc_project.Network.EthernetInterface";
const std::string root = "/xyz/openbmc_project/network/";

TEST(Clock, IsThatOfTheMachine)
{
    const auto before = static_cast<uint32_t>(::time(nullptr));
    const auto now = read(getTimeStamp);
    EXPECT_LE(before, now);
    EXPECT_LE(now, static_cast<uint32_t>(::time(nullptr)));

    timezone = -5400;
    EXPECT_EQ(read(getTimeZone), -5400);
    tzset();
}

TEST(SetTime, WritesMicrosecondsUnlessUnderNtp)
{
    const sim::Platform platform(sim::Scenario::standard());
    const auto clock = [&platform] {
        return platform.property(
            "xyz.openbmc_project.Time.Manager", "/xyz/openbmc_project/time/bmc",
            "xyz.openbmc_project.Time.EpochTime", "Elapsed");
    };
    // While the clock follows a server, nobody else may set it.
    EXPECT_EQ(setTimeStamp(1), -1);
    EXPECT_EQ(setNtpServerStatus(0), 0);
    EXPECT_EQ(setTimeStamp(INT32_MAX), 0);
    EXPECT_EQ(clock(), 2147483647000000);
    EXPECT_EQ(setTimeStamp(-1), 0);
    EXPECT_EQ(clock(), 18446744073708551616u);
}

TEST(SetNtpServers, WritesEveryInterfaceOrNone)
{
    sim::Platform platform(sim::Scenario::standard());
    for (const auto* line : {"", "   ", "10.0.0.1 10.0.0.2 10.0.0.3 10.0.0.4",
                             "10.0.0.1 ntp.example", "::1", "10.0.0",
                             "10.0.0.256", "10.0.0.1\t10.0.0.2"})
    {
        EXPECT_EQ(setNtpServerIP(line), -3) << line;
    }
    EXPECT_TRUE(platform.calls().empty());

    EXPECT_EQ(setNtpServerIP("  10.0.0.1   10.0.0.2 255.255.255.255 "), 0);
    for (const auto* name : {"eth0", "eth1"})
    {
        EXPECT_EQ(
            platform.property(network, root + name, ethernet, "NTPServers"),
            Json({"10.0.0.1", "10.0.0.2", "255.255.255.255"}));
    }
}

TEST(NtpServers, AreThoseOfTheFirstInterface)
{
    const auto serversOn = [](const Machine& machine) {
        const sim::Platform platform(machine.scenario());
        return read(getNtpPreferServer);
    };
    const auto port = [](const Json& servers) -> Json {
        return {{ethernet, {{"NTPServers", property("as", servers)}}}};
    };
    auto machine =
        Machine().owns(root + "eth0", "com.example.Other", port({"10.9.9.9"}));
    EXPECT_EQ(serversOn(machine), std::nullopt);
    machine.owns(root + "eth2", network, port({"10.0.0.3"}))
        .owns(root + "eth1", network, port({"10.0.0.1", "10.0.0.2"}));
    EXPECT_EQ(serversOn(machine), "10.0.0.1 10.0.0.2 ");
    machine.owns(root + "eth", network, port(Json::array()));
    EXPECT_EQ(serversOn(machine), std::nullopt);
}

} // namespace morvath::tests::time_accessors
