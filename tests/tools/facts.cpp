// SPDX-License-Identifier: Apache-2.0
#include "support/machine.hpp"
#include "support/program.hpp"

#include <gtest/gtest.h>

namespace morvath::tests::facts
{

constexpr auto inventory = "xyz.openbmc_project.Inventory.Manager";
constexpr auto asset = "xyz.openbmc_project.Inventory.Decorator.Asset";
const std::string board =
    "/xyz/openbmc_project/inventory/system/chassis/motherboard";
constexpr auto settings = "xyz.openbmc_project.Settings";
constexpr auto policyPath =
    "/xyz/openbmc_project/control/host0/power_restore_policy";
constexpr auto policy = "xyz.openbmc_project.Control.Power.RestorePolicy";

TEST(Get, PrintsValuesOfTheServer)
{
    sim::Platform platform(sim::Scenario::standard());
    EXPECT_EQ(morvath("get system-model").output, "VS2-2288\n");
    const auto several =
        morvath("get ntp-servers bios-boot-order-3 bios-ipv6-pxe power-state");
    EXPECT_EQ(several.status, 0);
    EXPECT_EQ(several.output, "ntp-servers:       10.20.30.5 10.20.30.6\n"
                              "bios-boot-order-3: 255\n"
                              "bios-ipv6-pxe:     no\n"
                              "power-state:       PowerOn\n");
}

TEST(Get, TellsTheMissingFromTheFailed)
{
    const auto noneKnown = policy + std::string(".Policy.None");
    const auto machine =
        Machine()
            .owns(board + "/board", inventory,
                  {{asset,
                    {{"BoardPartNumber", text("VSB\x1b-1")},
                     {"BoardSerialNumber", text("")},
                     {"BoardManufacturer", property("u", 1)}}}})
            .owns(policyPath, settings,
                  {{policy, {{"PowerRestorePolicy", text(noneKnown)}}}})
            .owns("/xyz/openbmc_project/time/sync_method", settings,
                  {{"xyz.openbmc_project.Time.Synchronization",
                    {{"TimeSyncMethod", text("")}}}})
            .fault({{"path", "/xyz/openbmc_project/time/sync_method"}},
                   {{"silent", true}});
    struct
    {
        const char* fact;
        const char* output;
        const char* error;
    } const cases[]{
        {"system-model", "-\n", "the platform does not have it"},
        {"bmc-version", "-\n", "the platform does not have it"},
        {"board-serial-number", "-\n", "the platform does not have it"},
        {"board-manufacturer", "", "the property is of an unexpected type"},
        {"power-restore-policy", "", "the platform holds an unknown value"},
        {"time-sync", "",
         "xyz.openbmc_project.Settings: timed out after 0.5 s\n"},
    };
    sim::Platform platform(machine.scenario());
    EXPECT_EQ(morvath("get board-part-number").output, "VSB\\x1b-1\n");
    for (const auto& [fact, output, error] : cases)
    {
        const auto arguments = std::string(fact) + " --timeout 0.5";
        const auto one = morvath("get " + arguments);
        EXPECT_EQ(one.status, 1) << fact;
        EXPECT_EQ(one.output, output) << fact;
        EXPECT_TRUE(one.errors.starts_with("morvath: " + std::string(fact) +
                                           ": " + error))
            << one.errors;
        const auto json =
            Json::parse(morvath("get --json " + arguments).output);
        EXPECT_EQ(json["facts"][fact], nullptr);
        EXPECT_EQ(json["errors"].size(), *output ? 0u : 1u) << fact;
    }
}

TEST(Set, ChangesWhatGetShows)
{
    struct
    {
        const char* fact;
        const char* value;
        const char* shown;
    } const cases[]{
        {"system-asset-tag", "'a b'", "a b\n"},
        {"system-host-name", "time", "time\n"},
        {"power-control", "force-warm-reboot", "force-warm-reboot\n"},
        {"power-control", "0", "off\n"},
        {"power-restore-policy", "alwayson", "AlwaysOn\n"},
        {"time-sync", "manual", "manual\n"},
        {"time-sync", "1", "ntp\n"},
        {"ntp-servers", "10.0.0.1 10.0.0.2", "10.0.0.1 10.0.0.2\n"},
        {"ntp-servers", "'10.0.0.3  10.0.0.4'", "10.0.0.3 10.0.0.4\n"},
    };
    sim::Platform platform(sim::Scenario::standard());
    for (const auto& [fact, value, shown] : cases)
    {
        const auto done = morvath(std::string("set ") + fact + ' ' + value);
        EXPECT_EQ(done.status, 0) << fact;
        EXPECT_EQ(done.output + done.errors, "") << fact;
        EXPECT_EQ(morvath(std::string("get ") + fact).output, shown) << fact;
    }
    EXPECT_EQ(morvath("get power-state").output, "PowerOff\n");
}

TEST(Set, TakesTheTimeInSeveralForms)
{
    sim::Platform platform(sim::Scenario::standard());
    const auto refused = morvath("set time 5");
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.errors.starts_with(
        "morvath: time: xyz.openbmc_project.Time.Manager: "
        "xyz.openbmc_project.Time.Error.Failed: "))
        << refused.errors;
    EXPECT_EQ(morvath("set time-sync manual").status, 0);
    const auto elapsed = [&platform] {
        return platform.property(
            "xyz.openbmc_project.Time.Manager", "/xyz/openbmc_project/time/bmc",
            "xyz.openbmc_project.Time.EpochTime", "Elapsed");
    };
    const std::pair<const char*, int64_t> cases[]{
        {"5", 5},
        {"1970-01-01T01:00:00+01:00", 0},
        {"2026-11-21T14:30:00Z", 1795271400},
        {"2026-11-21T14:30:00-00:30", 1795273200},
    };
    for (const auto& [given, seconds] : cases)
    {
        EXPECT_EQ(morvath(std::string("set time ") + given).status, 0) << given;
        EXPECT_EQ(elapsed(), seconds * 1000000) << given;
    }
    EXPECT_EQ(morvath("set time now").status, 0);
    EXPECT_GT(elapsed(), 1795271400000000);
    EXPECT_TRUE(morvath("get time").output.ends_with("Z\n"));
    EXPECT_TRUE(Json::parse(morvath("get time --json").output)["facts"]["time"]
                    .is_number_integer());
}

TEST(Set, NoticesASettingWithoutEffect)
{
    Machine machine;
    EXPECT_EQ(morvath("set power-control on").errors,
              "morvath: power-control: the platform does not have it\n");
    machine.behaves("ntp-servers-in-use")
        .owns("/xyz/openbmc_project/network/eth0",
              "xyz.openbmc_project.Network",
              {{"xyz.openbmc_project.Network.EthernetInterface",
                {{"NTPServers", property("as", {"10.0.0.5"})}}}});
    sim::Platform platform(machine.scenario());
    const auto ignored = morvath("set ntp-servers 10.0.0.1");
    EXPECT_EQ(ignored.status, 1);
    EXPECT_EQ(ignored.errors, "morvath: ntp-servers: the platform accepted "
                              "the value, but does not use it\n");
}

TEST(SetLldp, SwitchesOnePortThatIsThere)
{
    sim::Platform platform(sim::Scenario::standard());
    const std::string longest(54, 'n');
    const std::pair<std::string, int> cases[]{{"nic0 port1 on", 0},
                                              {"nic0 port7 on", 1},
                                              {longest + " p on", 1},
                                              {longest + " pp on", 2}};
    for (const auto& [arguments, status] : cases)
    {
        const auto done = morvath("set lldp " + arguments);
        EXPECT_EQ(done.status, status) << arguments;
        EXPECT_EQ(done.errors.starts_with("morvath: "), status != 0);
    }
    const auto enabled = [&platform] {
        return platform.property(
            "xyz.openbmc_project.Smbios.MDR_V2",
            board + "/nic0/NetworkPorts/port1",
            "xyz.openbmc_project.Inventory.Item.NetworkPort", "LldpEnabled");
    };
    EXPECT_EQ(enabled(), true);
    EXPECT_EQ(morvath("set lldp nic0 port1 off").status, 0);
    EXPECT_EQ(enabled(), false);
}

} // namespace morvath::tests::facts
