#include "client.hpp"
#include "sim/platform.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace morvath::tests
{

namespace
{

const std::string host = "xyz.openbmc_project.State.Host";
const std::string hostPath = "/xyz/openbmc_project/state/host0";
const std::string ethernet = "xyz.openbmc_project.Network.EthernetInterface";
const std::string settings = "xyz.openbmc_project.Settings";
const std::string sync = "xyz.openbmc_project.Time.Synchronization";
const std::string syncPath = "/xyz/openbmc_project/time/sync_method";

} // namespace

TEST(Behaviours, HostFollowsTransitions)
{
    const std::vector<std::pair<std::string, std::string>> steps{
        {"Reboot", "Running"},
        {"Off", "Off"},
        {"Reboot", "Off"},
        {"ForceWarmReboot", "Off"},
        {"On", "Running"},
        {"GracefulWarmReboot", "Running"},
        {"ForceWarmReboot", "Running"},
    };
    const sim::Platform platform(sim::Scenario::standard());
    Client client;
    for (const auto& [transition, state] : steps)
    {
        const Value request = text(host + ".Transition." + transition);
        client.set(host, hostPath, host, "RequestedHostTransition", request);
        for (const std::string& service : {host, host + "0"})
        {
            const auto held = [&](const std::string& name) {
                return platform.property(service, hostPath, host, name);
            };
            EXPECT_EQ(held("RequestedHostTransition"), *request.text());
            EXPECT_EQ(held("CurrentHostState"), host + ".HostState." + state)
                << transition;
        }
    }
}

TEST(Behaviours, StandardMachineRefusesWhatARealOneDoes)
{
    const sim::Platform platform(sim::Scenario::standard());
    Client client;
    const auto setClock = [&] {
        return client
            .set("xyz.openbmc_project.Time.Manager",
                 "/xyz/openbmc_project/time/bmc",
                 "xyz.openbmc_project.Time.EpochTime", "Elapsed", {"t", 1U})
            .error;
    };
    const auto setMethod = [&](const std::string& method) {
        return client
            .set(settings, syncPath, sync, "TimeSyncMethod", text(method))
            .error;
    };
    EXPECT_EQ(setClock(), "xyz.openbmc_project.Time.Error.Failed");
    EXPECT_EQ(setMethod("Manual"),
              "xyz.openbmc_project.sdbusplus.Error.InvalidEnumString");
    EXPECT_EQ(setMethod(sync + ".Method.Manual"), "");
    EXPECT_EQ(setClock(), "");
    EXPECT_EQ(
        client.set(host, hostPath, host, "CurrentHostState", text("")).error,
        "org.freedesktop.DBus.Error.PropertyReadOnly");
}

TEST(Behaviours, ServersInUseComeFromTheStaticOnes)
{
    const std::string machine =
        R"({"format": 1, "behaviours": ["ntp-servers-in-use"],
            "objects": [{"path": "/eth0", "services": [{"name": "x.N",
            "interfaces": {")" +
        ethernet + R"(": {
              "NTPServers": {"type": "as", "value": ["a"]},
              "StaticNTPServers": {"type": "as", "value": ["a"]}}}}]}]})";
    const sim::Platform platform(sim::Scenario::parse(machine, "machine"));
    Client client;
    for (const std::string written : {"NTPServers", "StaticNTPServers"})
    {
        EXPECT_EQ(
            client.set("x.N", "/eth0", ethernet, written, texts({"b"})).error,
            "");
        const Json expected{written == "NTPServers" ? "a" : "b"};
        for (const char* name : {"NTPServers", "StaticNTPServers"})
        {
            EXPECT_EQ(platform.property("x.N", "/eth0", ethernet, name),
                      expected)
                << written;
        }
    }
}

} // namespace morvath::tests
