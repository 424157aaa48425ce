// SPDX-License-Identifier: Apache-2.0
#include "support/machine.hpp"
#include "support/program.hpp"

#include <gtest/gtest.h>

namespace morvath::tests
{
namespace
{

constexpr auto service = "xyz.openbmc_project.Smbios.MDR_V2";
constexpr auto port = "/xyz/openbmc_project/inventory/system/chassis/"
                      "motherboard/nic0/NetworkPorts/port1";

TEST(SetLldp, SwitchesOnePort)
{
    sim::Platform platform(sim::Scenario::standard());
    for (const bool enabled : {true, false})
    {
        const auto done = run("MORVATH", std::string("set lldp nic0 port1 ") +
                                             (enabled ? "on" : "off"));
        EXPECT_EQ(done.status, 0);
        EXPECT_EQ(done.output + done.errors, "");
        EXPECT_EQ(
            platform.property(service, port,
                              "xyz.openbmc_project.Inventory.Item.NetworkPort",
                              "LldpEnabled"),
            enabled);
    }
}

TEST(SetLldp, FailsWithoutThePort)
{
    sim::Platform platform(sim::Scenario::standard());
    const std::string longest(54, 'n');
    const std::pair<std::string, int> cases[]{
        {"nic0 port7", 1}, {longest + " p", 1}, {longest + " pp", 2}};
    for (const auto& [names, status] : cases)
    {
        const auto failed = run("MORVATH", "set lldp " + names + " on");
        EXPECT_EQ(failed.status, status) << names;
        EXPECT_TRUE(failed.errors.starts_with("morvath: ")) << failed.errors;
    }
}

} // namespace
} // namespace morvath::tests
