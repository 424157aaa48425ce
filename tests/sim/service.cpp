// SPDX-License-Identifier: Apache-2.0
#include "sim/client.hpp"
#include "sim/platform.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace morvath::tests::service
{

using sim::Seconds;

const std::string busError = "org.freedesktop.DBus.Error.";

constexpr auto machine = R"({"format": 1, "objects": [
{"path": "/a", "services": [{"name": "x.S", "interfaces": {
  "x.First": {
    "Name": {"type": "s", "value": "one"},
    "Secret": {"type": "u", "value": 7, "hidden": true}},
  "x.Last": {
    "Name": {"type": "s", "value": "two"},
    "Mode": {"type": "s", "value": "m.On", "enum": ["m.On", "m.Off"]}}}}]}]})";

/** Keeps what is in all signals, each as an array after its name. */
int keepSignal(sd_bus_message* message, void* kept, sd_bus_error*)
{
    auto& one = static_cast<Json*>(kept)->emplace_back();
    one = sim::readJsonList(message);
    one.insert(one.begin(), sd_bus_message_get_member(message));
    return 0;
}

/** The signals of an interface, once there are so many. */
class Signals
{
  public:
    Signals(Client& client, const char* path, const char* interface) :
        bus(client.bus())
    {
        sim::check(sd_bus_match_signal(bus, nullptr, "x.S", path, interface,
                                       nullptr, keepSignal, &kept),
                   "sd_bus_match_signal");
    }

    Json wait(std::size_t count)
    {
        int progress = 1;
        while (kept.size() < count && progress > 0)
        {
            progress = sd_bus_process(bus, nullptr);
            if (progress == 0)
            {
                progress = sd_bus_wait(bus, patience);
            }
        }
        return kept;
    }

  private:
    sd_bus* bus;
    Json kept = Json::array();
};

TEST(Service, AnnouncesWhatChanges)
{
    const sim::Platform platform(sim::Scenario::parse(machine, "machine"));
    Client client;
    Signals signals(client, "/a", propertiesInterface);
    client.set("x.S", "/a", "x.First", "Name", "s", "one");
    client.set("x.S", "/a", "x.First", "Secret", "u", 1);
    client.set("x.S", "/a", "x.Last", "Name", "s", "new");
    EXPECT_EQ(signals.wait(1).dump(), R"([["PropertiesChanged","x.Last",)"
                                      R"({"Name":{"type":"s","value":"new"}},)"
                                      R"([]]])");
    EXPECT_EQ(platform.property("x.S", "/a", "x.First", "Secret"), 1);
    EXPECT_THROW(platform.property("x.S", "/a", "x.First", "Other"),
                 std::out_of_range);
}

TEST(Service, RefusesTextsThatAreNotEnumerated)
{
    const sim::Platform platform(sim::Scenario::parse(machine, "machine"));
    Client client;
    EXPECT_EQ(client.set("x.S", "/a", "x.Last", "Mode", "s", "Off"),
              "xyz.openbmc_project.sdbusplus.Error.InvalidEnumString");
    EXPECT_EQ(client.set("x.S", "/a", "x.Last", "Mode", "s", "m.Off"), Json());
    EXPECT_EQ(client.get("x.S", "/a", "x.Last", "Mode"), "m.Off");
}

TEST(Service, HasItsNameAlone)
{
    const auto scenario = sim::Scenario::parse(machine, "machine");
    const sim::Platform platform(scenario);
    EXPECT_THROW(sim::Platform{scenario}, std::system_error);
}

TEST(Behaviours, HostFollowsTransitions)
{
    const std::string host = "xyz.openbmc_project.State.Host";
    const std::string hostPath = "/xyz/openbmc_project/state/host0";
    const std::pair<std::string, std::string> steps[]{
        {"Reboot", "Running"}, {"Off", "Off"},
        {"Reboot", "Off"},     {"GracefulWarmReboot", "Off"},
        {"On", "Running"},     {"ForceWarmReboot", "Running"},
    };
    const sim::Platform platform(sim::Scenario::standard());
    Client client;
    for (const auto& [transition, state] : steps)
    {
        const auto request = host + ".Transition." + transition;
        client.set(host, hostPath, host, "RequestedHostTransition", "s",
                   request);
        for (const auto& service : {host, host + "0"})
        {
            const auto held = [&](const std::string& name) {
                return platform.property(service, hostPath, host, name);
            };
            EXPECT_EQ(held("RequestedHostTransition"), request);
            EXPECT_EQ(held("CurrentHostState"), host + ".HostState." + state)
                << transition;
        }
    }
}

constexpr auto moving = R"({"format": 1, "objects": [
{"path": "/a", "services": [{"name": "x.S", "interfaces": {
  "x.I": {"P": {"type": "i", "value": 0}}}}]}], "changes": [
{"after": 1, "every": 2, "path": "/a", "set": {"x.I": {"P": 1}}},
{"after": 2, "every": 2, "path": "/a", "set": {"x.I": {"P": 2}}},
{"after": 10.5, "add": {"path": "/b", "services": [
  {"name": "x.S", "interfaces": {"x.J": {"Q": {"type": "s", "value": "q"}}}},
  {"name": "x.New", "interfaces": {"x.K": {}}}]}},
{"after": 11, "path": "/b", "remove": true},
{"after": 12, "service": "x.S", "die": true},
{"after": 13, "service": "x.S", "start": true}]})";

TEST(Changes, HappenInTheirOrderAndAgain)
{
    sim::Platform platform(sim::Scenario::parse(moving, "moving"));
    for (const auto& [step, held] :
         {std::pair{0.5, 0}, {0.5, 1}, {0.9, 1}, {0.1, 2}, {1, 1}, {4.5, 1}})
    {
        platform.advance(Seconds(step));
        EXPECT_EQ(platform.property("x.S", "/a", "x.I", "P"), held) << step;
    }
}

TEST(Changes, OfObjectsAndServicesAreAnnounced)
{
    sim::Platform platform(sim::Scenario::parse(moving, "moving"));
    Client client;
    Signals signals(client, "/", "org.freedesktop.DBus.ObjectManager");
    const auto paths = [&](const char* interface) {
        return client.mapper("GetSubTreePaths", "sias",
                             Json::array({"/", 0, Json::array({interface})}));
    };
    platform.advance(Seconds(10.5));
    EXPECT_EQ(client.get("x.S", "/b", "x.J", "Q"), "q");
    EXPECT_EQ(paths("x.J"), Json{"/b"});
    EXPECT_EQ(paths("x.K"), Json{"/b"});
    platform.advance(Seconds(0.5));
    EXPECT_EQ(client.get("x.S", "/b", "x.J", "Q"), busError + "UnknownObject");
    EXPECT_EQ(paths("x.J"), Json::array());
    const auto announced = signals.wait(2);
    ASSERT_EQ(announced.size(), 2U);
    EXPECT_EQ(announced[0][0], "InterfacesAdded");
    EXPECT_EQ(announced[1][0], "InterfacesRemoved");
    platform.advance(Seconds(1));
    EXPECT_EQ(client.get("x.S", "/a", "x.I", "P"), busError + "ServiceUnknown");
    EXPECT_EQ(paths("x.I"), Json::array());
    platform.advance(Seconds(1));
    EXPECT_EQ(client.get("x.S", "/a", "x.I", "P"), 1);
    EXPECT_EQ(paths("x.I"), Json{"/a"});
}

TEST(Busy, StopsAFanAndLetsItRecover)
{
    sim::Platform platform(sim::Scenario::load("busy"));
    for (const auto& [step, speed] : {std::pair{0, 8120}, {75, 0}, {45, 8120}})
    {
        platform.advance(Seconds(step));
        const auto held = [&](const char* interface, const char* name) {
            const std::string prefix = "xyz.openbmc_project.";
            return platform.property(
                prefix + "FanSensor",
                "/xyz/openbmc_project/sensors/fan_tach/FAN1",
                prefix + "Sensor." + interface, name);
        };
        EXPECT_EQ(held("Value", "Value"), speed);
        EXPECT_EQ(held("Threshold.Critical", "CriticalAlarmLow"), speed == 0);
    }
}

} // namespace morvath::tests::service
