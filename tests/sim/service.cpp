// SPDX-License-Identifier: Apache-2.0
#include "sim/client.hpp"
#include "support/machine.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace morvath::tests::service
{

const std::string busError = "org.freedesktop.DBus.Error.";

constexpr auto machine = R"({"format": 1, "objects": [
{"path": "/a", "services": [{"name": "x.S", "interfaces": {
  "x.I": {"P": {"type": "s", "value": "one"}, "Q": {"type": "i", "value": 2},
          "H": {"type": "i", "value": 3, "hidden": true}},
  "x.J": {"P": {"type": "s", "value": "m.On", "enum": ["m.On", "m.Off"]}}}}]},
{"path": "/b", "services": [{"name": "x.S", "interfaces": {
  "x.I": {"P": {"type": "s", "value": "b"}}}}]}], )";

/** The machine with a list of faults or changes. */
sim::Scenario machineWith(const char* key, const std::string& list)
{
    return sim::Scenario::parse(
        machine + ('"' + std::string(key) + "\": " + list + "}"), key);
}

// Faults, and what Get P, Get Q and GetAll of x.I on /a, whose answer has the
// names alone here, and Get P on /b answer.
constexpr auto faultCases = R"json([
[[{"when": {"property": "P"}, "then": {"error": "x.E"}}],
 ["x.E", 2, "x.E", "x.E"]],
[[{"when": {"path": "/a", "property": "Q", "member": "GetAll"},
   "then": {"error": "x.E"}}], ["one", 2, "x.E", "b"]],
[[{"when": {"property": "H"}, "then": {"error": "x.E"}}], ["one", 2, "PQ", "b"]],
[[{"when": {"interface": "x.J", "property": "P"}, "then": {"error": "x.E"}}],
 ["one", 2, "PQ", "b"]],
[[{"when": {"interface": "org.freedesktop.DBus.Properties", "property": "Q"},
   "then": {"error": "x.E"}}], ["one", "x.E", "x.E", "b"]],
[[{"when": {"path": "/a", "call": 2}, "then": {"error": "x.E"}}],
 ["one", "x.E", "PQ", "b"]],
[[{"when": {"path": "/a"}, "then": {"error": "x.First"}},
  {"when": {}, "then": {"error": "x.Second"}}],
 ["x.First", "x.First", "x.First", "x.Second"]],
[[{"when": {"path": "/a", "property": "P"}, "then": {"missing": true}}],
 ["org.freedesktop.DBus.Error.UnknownProperty", 2, "Q", "b"]],
[[{"when": {"path": "/a", "property": "Q", "call": 2},
   "then": {"missing": true}}], ["one", 2, "P", "b"]],
[[{"when": {"path": "/b"}, "then": {"vanished": true}}],
 ["one", 2, "PQ", "org.freedesktop.DBus.Error.UnknownObject"]],
[[{"when": {"path": "/b"}, "then":
   {"reply": {"type": "v", "value": {"type": "u", "value": 9}}}}],
 ["one", 2, "PQ", 9]],
[[{"when": {"path": "/a", "member": "GetAll"}, "then":
   {"reply": {"type": "ii", "value": [5, 6]}}}], ["one", 2, 5, "b"]]
])json";

TEST(Faults, ReachExactlyTheCallsTheyDescribe)
{
    for (const auto& [row, expected] :
         Json::parse(faultCases).get<std::vector<std::pair<Json, Json>>>())
    {
        const sim::Platform platform(machineWith("faults", row.dump()));
        Client client;
        Json answers{client.properties("x.S", "/a", {"x.I", "P"}),
                     client.properties("x.S", "/a", {"x.I", "Q"}),
                     client.properties("x.S", "/a", {"x.I"}),
                     client.properties("x.S", "/b", {"x.I", "P"})};
        if (answers[2].is_object())
        {
            std::string names;
            for (const auto& one : answers[2].items())
            {
                names += one.key();
            }
            answers[2] = names;
        }
        EXPECT_EQ(answers, expected) << row;
    }
}

TEST(Faults, DelayedCallIsAnsweredLateAndAnUnusedFaultIsTold)
{
    const sim::Platform platform(machineWith(
        "faults", R"([{"when": {"path": "/a"}, "then": {"delayMs": 60}},
           {"when": {"path": "/a", "property": "P"}, "then": {"missing": true}},
           {"when": {"path": "/a", "call": 3}, "then": {"die": true}}])"));
    Client client;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(client.properties("x.S", "/a", {"x.I", "Q"}), 2);
    EXPECT_GE(std::chrono::steady_clock::now() - start,
              std::chrono::milliseconds(60));
    EXPECT_EQ(client.properties("x.S", "/a", {"x.I", "P"}),
              busError + "UnknownProperty");
    EXPECT_EQ(platform.unusedFaults(), std::vector<std::string>{"/faults/2"});
}

/** The order of interfaces stays while a property comes and goes. */
TEST(Faults, MissingPropertyLeavesTheOthersInTheirOrder)
{
    const sim::Platform platform(machineWith(
        "faults", R"([{"when": {"path": "/a", "property": "Q", "call": 1},
                      "then": {"missing": true}},
                     {"when": {"path": "/b", "property": "P"},
                      "then": {"missing": true}}])"));
    Client client;
    const std::string both = R"([["P",{"type":"s","value":"m.On"}],)"
                             R"(["P",{"type":"s","value":"one"}])";
    EXPECT_EQ(client.properties("x.S", "/a", {""}).dump(), both + ']');
    EXPECT_EQ(client.properties("x.S", "/a", {""}).dump(),
              both + R"(,["Q",{"type":"i","value":2}]])");
    const auto isIntrospected = [&](const char* path, const char* name) {
        const std::string xml = client.call(
            "x.S", path, "org.freedesktop.DBus.Introspectable", "Introspect");
        return xml.find(name) != xml.npos;
    };
    EXPECT_TRUE(isIntrospected("/a", "\"Q\""));
    EXPECT_FALSE(isIntrospected("/b", "\"P\""));
}

/** The signals of x.S that come until an action ends with an answer of it. */
Json signalsDuring(const Client& client, const char* interface,
                   const auto& action)
{
    Json signals;
    const auto keep = [](sd_bus_message* message, void* all, sd_bus_error*) {
        static_cast<Json*>(all)->push_back(
            {sd_bus_message_get_member(message), sim::readJsonList(message)});
        return 0;
    };
    sd_bus_slot* slot = nullptr;
    sim::check(sd_bus_match_signal(client.bus.get(), &slot, "x.S", nullptr,
                                   interface, nullptr, keep, &signals));
    const sim::Slot owner(slot);
    action();
    while (sd_bus_process(client.bus.get(), nullptr) > 0)
    {
        continue;
    }
    return signals;
}

TEST(Service, AnnouncesWhatChanges)
{
    const auto scenario = machineWith("faults", "[]");
    const sim::Platform platform(scenario);
    Client client;
    const auto set = [&](const char* interface, const char* name,
                         const Json& value) {
        return client.properties("x.S", "/a", {interface, name, value});
    };
    const auto* properties = "org.freedesktop.DBus.Properties";
    const auto announced = signalsDuring(client, properties, [&] {
        EXPECT_EQ(set("x.I", "P", text("one")), Json());
        EXPECT_EQ(set("x.I", "H", property("i", 1)), Json());
        EXPECT_EQ(set("x.J", "P", text("Off")),
                  "xyz.openbmc_project.sdbusplus.Error.InvalidEnumString");
        EXPECT_EQ(set("x.J", "P", text("m.Off")), Json());
    });
    EXPECT_EQ(announced.dump(), R"([["PropertiesChanged",["x.J",)"
                                R"({"P":{"type":"s","value":"m.Off"}},[]]]])");
    EXPECT_EQ(platform.property("x.S", "/a", "x.I", "H"), 1);
    EXPECT_THROW(platform.property("x.S", "/a", "x.I", "Other"),
                 std::out_of_range);
    // The name is taken.
    EXPECT_THROW(sim::Platform{scenario}, std::system_error);
}

TEST(Behaviours, HostFollowsTransitions)
{
    const std::string host = "xyz.openbmc_project.State.Host";
    const std::string path = "/xyz/openbmc_project/state/host0";
    const auto requested = "RequestedHostTransition";
    const sim::Platform platform(sim::Scenario::standard());
    Client client;
    for (const auto& [transition, state] : {std::pair{"Reboot", "Running"},
                                            {"Off", "Off"},
                                            {"Reboot", "Off"},
                                            {"GracefulWarmReboot", "Off"},
                                            {"On", "Running"},
                                            {"ForceWarmReboot", "Running"}})
    {
        const auto request = host + ".Transition." + transition;
        client.properties(host, path, {host, requested, text(request)});
        for (const auto& service : {host, host + "0"})
        {
            const auto held = [&](const char* name) {
                return platform.property(service, path, host, name);
            };
            EXPECT_EQ(held(requested), request);
            EXPECT_EQ(held("CurrentHostState"), host + ".HostState." + state);
        }
    }
}

TEST(Changes, HappenInTheirOrderAndAreAnnounced)
{
    sim::Platform platform(machineWith("changes", R"([
{"after": 1, "every": 2, "path": "/a", "set": {"x.I": {"Q": 1}}},
{"after": 2, "every": 2, "path": "/a", "set": {"x.I": {"Q": 2}}},
{"after": 10.5, "add": {"path": "/c", "services": [
  {"name": "x.S", "interfaces": {"x.C": {"R": {"type": "s", "value": "r"}}}},
  {"name": "x.New", "interfaces": {"x.K": {}}}]}},
{"after": 11, "path": "/c", "remove": true},
{"after": 12, "service": "x.S", "die": true},
{"after": 13, "service": "x.S", "start": true}])"));
    Client client;
    const auto none = busError + "UnknownObject";
    const auto dead = busError + "ServiceUnknown";
    const Json a{"/a"};
    const Json c{"/c"};
    const Json no = Json::array();
    // Seconds, and then Q, R and where the mapper knows x.J, x.C and x.K.
    const std::pair<double, Json> steps[]{
        {0.5, {2, none, a, no, no}},   {0.5, {1, none, a, no, no}},
        {0.9, {1, none, a, no, no}},   {0.1, {2, none, a, no, no}},
        {1, {1, none, a, no, no}},     {4.5, {1, none, a, no, no}},
        {3, {2, "r", a, c, c}},        {0.5, {1, none, a, no, no}},
        {1, {dead, dead, no, no, no}}, {1, {1, none, a, no, no}},
    };
    const auto* manager = "org.freedesktop.DBus.ObjectManager";
    const auto announced = signalsDuring(client, manager, [&] {
        for (const auto& [step, expected] : steps)
        {
            platform.advance(sim::Seconds(step));
            Json held{client.properties("x.S", "/a", {"x.I", "Q"}),
                      client.properties("x.S", "/c", {"x.C", "R"})};
            for (const auto* interface : {"x.J", "x.C", "x.K"})
            {
                held.push_back(client.mapper(
                    "GetSubTreePaths", {"/", 0, Json::array({interface})}));
            }
            EXPECT_EQ(held, expected) << step;
        }
    });
    ASSERT_EQ(announced.size(), 2u);
    EXPECT_EQ(announced[0][0], "InterfacesAdded");
    EXPECT_EQ(announced[1][0], "InterfacesRemoved");
}

TEST(Changes, LeaveTimeForCalls)
{
    Json many;
    for (int count = 0; count < 500; ++count)
    {
        many.push_back(
            {{"after", 0}, {"every", 0.01}, {"path", "/b"}, {"remove", true}});
    }
    const sim::Platform platform(machineWith("changes", many.dump()),
                                 sim::Platform::Live{});
    Client client;
    EXPECT_EQ(client.properties("x.S", "/a", {"x.I", "Q"}), 2);
}

} // namespace morvath::tests::service
