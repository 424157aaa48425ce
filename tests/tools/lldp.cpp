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
    const auto failed = run("MORVATH", "set lldp nic0 port7 on");
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.errors,
              "morvath: port port7 of nic0: the platform does not answer, does "
              "not have it, or refuses\n");
}

TEST(SetLldp, RefusesWhatTheLibraryWouldAbortFor)
{
    const std::string adapter(54, 'n');
    EXPECT_EQ(run("MORVATH", "set lldp " + adapter + " p on").status, 1);
    const auto refused = run("MORVATH", "set lldp " + adapter + " pp on");
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.errors,
              "morvath: ADAPTER PORT: the names are too long together\n");
}

} // namespace
} // namespace morvath::tests
