// SPDX-License-Identifier: Apache-2.0
#include "sim/client.hpp"
#include "sim/platform.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace morvath::tests::changes
{

using sim::Seconds;

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

    sim::Platform platform{sim::Scenario::parse(moving, "moving")};
    Client client;
};

TEST_F(Changes, HappenInTheirOrderAndAgain)
{
    for (const auto& [step, held] :
         {std::pair{0.5, 0}, {0.5, 1}, {0.9, 1}, {0.1, 2}, {1, 1}, {4.5, 1}})
    {
        platform.advance(Seconds(step));
        EXPECT_EQ(value("/a", "x.I", "P"), held) << step;
    }
}

TEST_F(Changes, OfObjectsAndServicesAreAnnounced)
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
    platform.advance(Seconds(1));
    EXPECT_EQ(value("/a", "x.I", "P"),
              "org.freedesktop.DBus.Error.ServiceUnknown");
    EXPECT_EQ(paths("x.I"), Json::array());
    platform.advance(Seconds(1));
    EXPECT_EQ(value("/a", "x.I", "P"), 1);
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

} // namespace morvath::tests::changes
