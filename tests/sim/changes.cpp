// SPDX-License-Identifier: Apache-2.0
#include "sim/client.hpp"
#include "sim/platform.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace morvath::tests
{
namespace
{

using sim::Scenario;
using sim::Seconds;

std::string machine(const std::string& changes)
{
    return R"({"format": 1, "objects": [{"path": "/a", "services": [
               {"name": "x.S", "interfaces": {"x.I": {
                 "P": {"type": "i", "value": 0}}}}]}],
               "raid": {"controllers": [{"raid_id": 1}]},
               "changes": [)" +
           changes + "]}";
}

constexpr auto moving = R"(
{"after": 1, "every": 2, "path": "/a", "set": {"x.I": {"P": 1}}},
{"after": 2, "every": 2, "path": "/a", "set": {"x.I": {"P": 2}}},
{"after": 10.5, "add": {"path": "/b", "services": [
  {"name": "x.S", "interfaces": {"x.J": {"Q": {"type": "s", "value": "q"}}}},
  {"name": "x.New", "interfaces": {"x.K": {}}}]}},
{"after": 11, "path": "/b", "remove": true},
{"after": 12, "service": "x.S", "die": true},
{"after": 13, "service": "x.S", "start": true})";

int keepMember(sd_bus_message* message, void* kept, sd_bus_error*)
{
    static_cast<std::vector<std::string>*>(kept)->push_back(
        sd_bus_message_get_member(message));
    return 0;
}

class Changes : public testing::Test
{
  protected:
    Json value(const char* path, const char* interface, const char* name)
    {
        return client.get("x.S", path, interface, name).value;
    }

    Json paths(const char* interface)
    {
        return client
            .mapper("GetSubTreePaths", "sias",
                    Json::array({"/", 0, Json::array({interface})}))
            .value;
    }

    sim::Platform platform{Scenario::parse(machine(moving), "moving")};
    Client client;
};

} // namespace

TEST_F(Changes, HappenInTheirOrderAndAgain)
{
    for (const auto& [step, held] :
         {std::pair{0.5, 0}, {0.5, 1}, {0.9, 1}, {0.1, 2}, {1, 1}, {4.5, 1}})
    {
        platform.advance(Seconds(step));
        EXPECT_EQ(value("/a", "x.I", "P"), held) << step;
    }
}

TEST_F(Changes, OfObjectsAreAnnounced)
{
    std::vector<std::string> signals;
    sim::check(sd_bus_match_signal(client.bus(), nullptr, "x.S", "/",
                                   "org.freedesktop.DBus.ObjectManager",
                                   nullptr, keepMember, &signals),
               "sd_bus_match_signal");
    platform.advance(Seconds(10.5));
    EXPECT_EQ(value("/b", "x.J", "Q"), "q");
    EXPECT_EQ(paths("x.J"), Json{"/b"});
    EXPECT_EQ(paths("x.K"), Json{"/b"});
    platform.advance(Seconds(0.5));
    EXPECT_EQ(value("/b", "x.J", "Q"),
              "org.freedesktop.DBus.Error.UnknownObject");
    EXPECT_EQ(paths("x.J"), Json::array());
    while (signals.size() < 2 && sd_bus_wait(client.bus(), patience) >= 0)
    {
        ASSERT_GE(sd_bus_process(client.bus(), nullptr), 0);
    }
    EXPECT_EQ(signals, (std::vector<std::string>{"InterfacesAdded",
                                                 "InterfacesRemoved"}));
}

TEST_F(Changes, OfServicesAreFollowed)
{
    platform.advance(Seconds(12));
    EXPECT_EQ(value("/a", "x.I", "P"),
              "org.freedesktop.DBus.Error.ServiceUnknown");
    EXPECT_EQ(paths("x.I"), Json::array());
    platform.advance(Seconds(1));
    EXPECT_EQ(value("/a", "x.I", "P"), 1);
    EXPECT_EQ(paths("x.I"), Json{"/a"});
}

TEST(BadChanges, AreRefusedWithTheirPlace)
{
    const std::pair<std::string, std::string> cases[]{
        {R"({"path": "/a"})", ": \"after\" is missing"},
        {R"({"after": -1})",
         "/after: must be a number of seconds, at least 0.0"},
        {R"({"after": 1, "every": 0})",
         "/every: must be a number of seconds, at least 0.01"},
        {R"({"after": 1, "path": "/a"})",
         ": must say one of set, add, remove, die, start, raid"},
        {R"({"after": 1, "path": "/b", "set": {}})",
         "/path: there is no such object"},
        {R"({"after": 1, "path": "/a", "set": {"x.I": {"R": 1}}})",
         "/set/x.I/R: there is no such property"},
        {R"({"after": 1, "path": "/a", "set": {"x.I": {"P": "one"}}})",
         "/set/x.I/P: must be a whole number from -2147483648 to 2147483647 "
         "(type i)"},
        {R"({"after": 1, "service": "x.T", "die": true})",
         "/service: there is no such service"},
        {R"({"after": 1, "raid": {"/controllers/1/raid_id": 2}})",
         "/raid/~1controllers~11~1raid_id: there is no such place in the RAID "
         "section"},
        {R"({"after": 1, "raid": {"/controllers/0/raid_id": -2}})",
         "/raid/~1controllers~10~1raid_id/controllers/0/raid_id: must be a "
         "whole number from 0 to 4294967295"},
    };
    for (const auto& [change, message] : cases)
    {
        try
        {
            Scenario::parse(machine(change), "file");
            ADD_FAILURE() << change;
        }
        catch (const sim::ScenarioError& error)
        {
            EXPECT_EQ(error.what(), "file: /changes/0" + message);
        }
    }
}

TEST(Busy, StopsAFanAndLetsItRecover)
{
    sim::Platform platform(Scenario::load("busy"));
    const auto held = [&](const char* interface, const char* name) {
        const std::string prefix = "xyz.openbmc_project.";
        return platform.property(prefix + "FanSensor",
                                 "/xyz/openbmc_project/sensors/fan_tach/FAN1",
                                 prefix + "Sensor." + interface, name);
    };
    EXPECT_EQ(held("Value", "Value"), 8120);
    platform.advance(Seconds(75));
    EXPECT_EQ(held("Value", "Value"), 0);
    EXPECT_EQ(held("Threshold.Critical", "CriticalAlarmLow"), true);
    platform.advance(Seconds(45));
    EXPECT_EQ(held("Value", "Value"), 8120);
    EXPECT_EQ(held("Threshold.Critical", "CriticalAlarmLow"), false);
}

} // namespace morvath::tests
