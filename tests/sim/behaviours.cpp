#include "client.hpp"
#include "sim/platform.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace morvath::tests
{

namespace
{

const std::string hostInterface = "xyz.openbmc_project.State.Host";
const std::string hostPath = "/xyz/openbmc_project/state/host0";
const std::string ethernet = "xyz.openbmc_project.Network.EthernetInterface";

std::string network(const std::string& behaviours)
{
    return R"({"format": 1, "behaviours": )" + behaviours +
           R"(, "objects": [{"path": "/eth0", "services": [{"name": "x.N",
           "interfaces": {")" +
           ethernet + R"(": {
             "NTPServers": {"type": "as", "value": ["a"]},
             "StaticNTPServers": {"type": "as", "value": ["a"]}}}}]}]})";
}

} // namespace

TEST(Behaviours, HostFollowsTransitions)
{
    struct Step
    {
        std::string transition;
        std::string state;
    };
    const std::vector<Step> steps{
        {"Reboot", "Running"},
        {"Off", "Off"},
        {"Reboot", "Off"},
        {"ForceWarmReboot", "Off"},
        {"On", "Running"},
        {"GracefulWarmReboot", "Running"},
        {"ForceWarmReboot", "Running"},
        {"On", "Running"},
    };
    const sim::Platform platform(sim::Scenario::standard());
    Client client;
    for (const Step& step : steps)
    {
        const std::string request =
            hostInterface + ".Transition." + step.transition;
        EXPECT_EQ(client
                      .set("xyz.openbmc_project.State.Host", hostPath,
                           hostInterface, "RequestedHostTransition",
                           text(request))
                      .error,
                  "");
        for (const char* service : {"xyz.openbmc_project.State.Host",
                                    "xyz.openbmc_project.State.Host0"})
        {
            EXPECT_EQ(platform.property(service, hostPath, hostInterface,
                                        "RequestedHostTransition"),
                      request);
            EXPECT_EQ(platform.property(service, hostPath, hostInterface,
                                        "CurrentHostState"),
                      hostInterface + ".HostState." + step.state)
                << step.transition;
        }
    }
}

TEST(Behaviours, StandardMachineRefusesWhatARealOneDoes)
{
    struct Case
    {
        std::string service;
        std::string path;
        std::string interface;
        std::string name;
        Value value;
        std::string error;
    };
    const std::string settings = "xyz.openbmc_project.Settings";
    const std::string policy =
        "xyz.openbmc_project.Control.Power.RestorePolicy";
    const std::string policyPath =
        "/xyz/openbmc_project/control/host0/power_restore_policy";
    const std::string sync = "xyz.openbmc_project.Time.Synchronization";
    const std::string syncPath = "/xyz/openbmc_project/time/sync_method";
    const std::string invalidText =
        "xyz.openbmc_project.sdbusplus.Error.InvalidEnumString";
    const Case setClock{"xyz.openbmc_project.Time.Manager",
                        "/xyz/openbmc_project/time/bmc",
                        "xyz.openbmc_project.Time.EpochTime",
                        "Elapsed",
                        {"t", 1U},
                        ""};
    Case refusedClock = setClock;
    refusedClock.error = "xyz.openbmc_project.Time.Error.Failed";
    const std::vector<Case> cases{
        refusedClock,
        {settings, syncPath, sync, "TimeSyncMethod", text("Manual"),
         invalidText},
        {settings, syncPath, sync, "TimeSyncMethod",
         text(sync + ".Method.Manual"), ""},
        setClock,
        {settings, policyPath, policy, "PowerRestorePolicy",
         text(policy + ".Policy.Never"), invalidText},
        {settings, policyPath, policy, "PowerRestorePolicy",
         text(policy + ".Policy.None"), ""},
        {"xyz.openbmc_project.State.Host", hostPath, hostInterface,
         "RequestedHostTransition", text("On"), invalidText},
        {"xyz.openbmc_project.State.Host", hostPath, hostInterface,
         "CurrentHostState", text(hostInterface + ".HostState.Off"),
         "org.freedesktop.DBus.Error.PropertyReadOnly"},
    };
    const sim::Platform platform(sim::Scenario::standard());
    Client client;
    for (const Case& c : cases)
    {
        EXPECT_EQ(
            client.set(c.service, c.path, c.interface, c.name, c.value).error,
            c.error)
            << c.name << " " << c.error;
    }
}

TEST(Behaviours, ServersInUseComeFromTheStaticOnes)
{
    struct Case
    {
        std::string behaviours;
        std::string property;
        Json inUse;
        Json fixed;
    };
    const std::string chosen = R"(["ntp-servers-in-use"])";
    const std::vector<Case> cases{
        {"[]", "NTPServers", {"b"}, {"a"}},
        {"[]", "StaticNTPServers", {"a"}, {"b"}},
        {chosen, "NTPServers", {"a"}, {"a"}},
        {chosen, "StaticNTPServers", {"b"}, {"b"}},
    };
    for (const Case& c : cases)
    {
        const sim::Platform platform(
            sim::Scenario::parse(network(c.behaviours), "network"));
        Client client;
        EXPECT_EQ(client.set("x.N", "/eth0", ethernet, c.property, texts({"b"}))
                      .error,
                  "");
        EXPECT_EQ(platform.property("x.N", "/eth0", ethernet, "NTPServers"),
                  c.inUse)
            << c.behaviours << c.property;
        EXPECT_EQ(
            platform.property("x.N", "/eth0", ethernet, "StaticNTPServers"),
            c.fixed)
            << c.behaviours << c.property;
    }
}

} // namespace morvath::tests
