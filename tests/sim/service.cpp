// SPDX-License-Identifier: Apache-2.0
#include "sim/client.hpp"
#include "sim/platform.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <tuple>
#include <utility>

namespace morvath::tests::service
{

using sim::Seconds;

const std::string busError = "org.freedesktop.DBus.Error.";

constexpr auto machine = R"({"format": 1, "objects": [
{"path": "/a/b", "services": [{"name": "x.S", "interfaces": {
  "x.First": {
    "Name": {"type": "s", "value": "one"},
    "Fixed": {"type": "i", "value": -5, "readOnly": true},
    "Secret": {"type": "u", "value": 7, "hidden": true},
    "Flag": {"type": "b", "value": true}},
  "x.Empty": {},
  "x.Last": {
    "Name": {"type": "s", "value": "two"},
    "Level": {"type": "d", "value": "nan"},
    "Mode": {"type": "s", "value": "m.On", "enum": ["m.On", "m.Off"]}}}}]},
{"path": "/a/b/c", "services": [{"name": "x.S", "interfaces": {}}]}]})";

TEST(Service, HasWhatItsScenarioSays)
{
    const sim::Platform platform(sim::Scenario::parse(machine, "machine"));
    Client client;
    const auto introspect = [&](const char* path) {
        const std::string xml = client.call(
            "x.S", path, "org.freedesktop.DBus.Introspectable", "Introspect");
        constexpr std::string_view before = "PropertiesChanged";
        const auto end = xml.find(" </interface>", xml.find(before));
        return xml.substr(end + sizeof(" </interface>"));
    };
    EXPECT_EQ(introspect("/a/b"), R"( <interface name="x.Last">
  <property name="Name" type="s" access="readwrite">
  </property>
  <property name="Level" type="d" access="readwrite">
  </property>
  <property name="Mode" type="s" access="readwrite">
  </property>
 </interface>
 <interface name="x.Empty">
 </interface>
 <interface name="x.First">
  <property name="Name" type="s" access="readwrite">
  </property>
  <property name="Fixed" type="i" access="read">
  </property>
  <property name="Flag" type="b" access="readwrite">
  </property>
 </interface>
 <node name="c"/>
</node>
)");
    EXPECT_EQ(introspect("/a/b/c"), "</node>\n");
    const std::pair<const char*, Json> properties[]{
        {"Name", "one"}, {"Secret", 7}, {"None", busError + "UnknownProperty"}};
    for (const auto& [name, value] : properties)
    {
        EXPECT_EQ(client.get("x.S", "/a/b", "x.First", name), value) << name;
    }
    const auto none = busError + "UnknownInterface";
    const auto unknown = busError + "UnknownObject";
    const std::tuple<const char*, const char*, Json> contents[]{
        {"/a/b", "x.Empty", Json::object()},
        {"/a/b", "x.None", none},
        {"/a/b/c", "", Json::object()},
        {"/a", "", unknown},
        {"/none", "", unknown},
    };
    for (const auto& [path, interface, value] : contents)
    {
        EXPECT_EQ(client.getAll("x.S", path, interface), value) << path;
    }
    const std::tuple<const char*, const char*, Json, Json> settings[]{
        {"Name", "s", "new", {}},
        {"Name", "i", 3, busError + "InvalidArgs"},
        {"Fixed", "i", 3, busError + "PropertyReadOnly"},
        {"Secret", "u", 8, {}},
        {"Flag", "b", false, {}},
    };
    for (const auto& [name, type, value, answer] : settings)
    {
        EXPECT_EQ(client.set("x.S", "/a/b", "x.First", name, type, value),
                  answer)
            << name << type;
    }
    EXPECT_EQ(client.get("x.S", "/a/b", "x.First", "Secret"), 8);
    EXPECT_EQ(client.getAll("x.S", "/a/b", "").dump(),
              R"([["Name",{"type":"s","value":"two"}],)"
              R"(["Level",{"type":"d","value":"nan"}],)"
              R"(["Mode",{"type":"s","value":"m.On"}],)"
              R"(["Name",{"type":"s","value":"new"}],)"
              R"(["Fixed",{"type":"i","value":-5}],)"
              R"(["Flag",{"type":"b","value":false}]])");
}

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
    Signals signals(client, "/a/b", propertiesInterface);
    client.set("x.S", "/a/b", "x.First", "Name", "s", "one");
    client.set("x.S", "/a/b", "x.First", "Secret", "u", 1);
    client.set("x.S", "/a/b", "x.Last", "Name", "s", "new");
    EXPECT_EQ(signals.wait(1).dump(), R"([["PropertiesChanged","x.Last",)"
                                      R"({"Name":{"type":"s","value":"new"}},)"
                                      R"([]]])");
    EXPECT_EQ(platform.property("x.S", "/a/b", "x.First", "Secret"), 1);
    EXPECT_THROW(platform.property("x.S", "/a/b", "x.First", "Other"),
                 std::out_of_range);
}

TEST(Service, RefusesTextsThatAreNotEnumerated)
{
    const sim::Platform platform(sim::Scenario::parse(machine, "machine"));
    Client client;
    EXPECT_EQ(client.set("x.S", "/a/b", "x.Last", "Mode", "s", "Off"),
              "xyz.openbmc_project.sdbusplus.Error.InvalidEnumString");
    EXPECT_EQ(client.set("x.S", "/a/b", "x.Last", "Mode", "s", "m.Off"),
              Json());
    EXPECT_EQ(client.get("x.S", "/a/b", "x.Last", "Mode"), "m.Off");
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
