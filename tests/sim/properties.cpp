// SPDX-License-Identifier: Apache-2.0
#include "sim/client.hpp"
#include "sim/platform.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace morvath::tests
{

namespace
{

constexpr const char* machine = R"({"format": 1, "objects": [
{"path": "/a/b", "services": [{"name": "x.S", "interfaces": {
  "x.First": {
    "Name": {"type": "s", "value": "one"},
    "Fixed": {"type": "i", "value": -5, "readOnly": true},
    "Secret": {"type": "u", "value": 7, "hidden": true},
    "Mode": {"type": "s", "value": "m.On", "enum": ["m.On", "m.Off"]}},
  "x.Empty": {},
  "x.Last": {
    "Name": {"type": "s", "value": "two"},
    "Level": {"type": "d", "value": "nan"}}}}]}]})";

class Properties : public testing::Test
{
  protected:
    sim::Platform platform{sim::Scenario::parse(machine, "machine")};
    Client client;
};

std::string errorName(const std::string& word)
{
    return word.empty() ? "" : "org.freedesktop.DBus.Error." + word;
}

int keepSignal(sd_bus_message* message, void* kept, sd_bus_error*)
{
    *static_cast<std::vector<Value>*>(kept) = sim::readValues(message);
    return 0;
}

} // namespace

TEST_F(Properties, ReadingAnswersLikeSdBus)
{
    struct Case
    {
        std::string path;
        std::string interface;
        std::string name;
        Json get;
        std::string getAllError;
    };
    const std::string unknownObject = errorName("UnknownObject");
    const std::string unknownProperty = errorName("UnknownProperty");
    const std::vector<Case> cases{
        {"/a/b", "x.First", "Name", "one", ""},
        {"/a/b", "x.Last", "Name", "two", ""},
        {"/a/b", "x.Last", "Level", "nan", ""},
        {"/a/b", "x.First", "Secret", 7, ""},
        {"/a/b", "x.First", "Level", unknownProperty, ""},
        {"/a/b", "x.None", "Name", unknownProperty, "UnknownInterface"},
        {"/a/b", "org.freedesktop.DBus.Peer", "Name", unknownProperty, ""},
        {"/a", "x.First", "Name", unknownObject, "UnknownObject"},
        {"/none", "x.First", "Name", unknownObject, "UnknownObject"},
    };
    for (const Case& c : cases)
    {
        EXPECT_EQ(client.get("x.S", c.path, c.interface, c.name).value, c.get)
            << c.path << " " << c.interface << " " << c.name;
        EXPECT_EQ(client.getAll("x.S", c.path, c.interface).error,
                  errorName(c.getAllError))
            << c.path << " " << c.interface;
    }
    EXPECT_EQ(client.get("x.S", "/a/b", "x.None", "P").message,
              "Unknown interface x.None or property P.");
}

TEST_F(Properties, SetChecksBeforeItChanges)
{
    struct Case
    {
        std::string name;
        Value value;
        std::string error;
        std::string message;
    };
    const std::vector<Case> cases{
        {"Name", text("new"), "", ""},
        {"Secret", {"u", 8U}, "", ""},
        {"Mode", text("m.Off"), "", ""},
        {"Mode", text("Off"),
         "xyz.openbmc_project.sdbusplus.Error.InvalidEnumString",
         "The text is no member of the enumeration."},
        {"Name",
         {"i", 3},
         errorName("InvalidArgs"),
         "Incorrect parameters for property 'Name', expected 's', got 'i'."},
        {"Fixed",
         {"i", 3},
         errorName("PropertyReadOnly"),
         "Property 'Fixed' is not writable."},
        {"Other",
         {"i", 3},
         errorName("UnknownProperty"),
         "Unknown interface x.First or property Other."},
    };
    for (const Case& c : cases)
    {
        const Reply reply =
            client.set("x.S", "/a/b", "x.First", c.name, c.value);
        EXPECT_EQ(reply.error, c.error) << c.name;
        EXPECT_EQ(reply.message, c.message) << c.name;
    }
    const std::vector<std::pair<std::string, Json>> after{
        {"Name", "new"}, {"Secret", 8}, {"Mode", "m.Off"}, {"Fixed", -5}};
    for (const auto& [name, value] : after)
    {
        EXPECT_EQ(platform.property("x.S", "/a/b", "x.First", name), value);
    }
    EXPECT_THROW(platform.property("x.S", "/a/b", "x.First", "Other"),
                 std::out_of_range);
    EXPECT_EQ(client.set("x.S", "/a", "x.First", "Name", text("")).error,
              errorName("UnknownObject"));
}

TEST_F(Properties, SetAnnouncesTheChange)
{
    std::vector<Value> signal;
    sim::check(sd_bus_match_signal(client.bus(), nullptr, "x.S", "/a/b",
                                   "org.freedesktop.DBus.Properties",
                                   "PropertiesChanged", keepSignal, &signal),
               "sd_bus_match_signal");
    client.set("x.S", "/a/b", "x.First", "Secret", {"u", 1U});
    client.set("x.S", "/a/b", "x.Last", "Name", text("new"));
    while (signal.empty() && sd_bus_wait(client.bus(), patience) >= 0)
    {
        ASSERT_GE(sd_bus_process(client.bus(), nullptr), 0);
    }
    EXPECT_EQ(sim::toJson(signal).dump(),
              R"(["x.Last",{"Name":{"type":"s","value":"new"}},[]])");
}

TEST_F(Properties, IntrospectionTellsWhatIsNotHidden)
{
    const auto xml =
        client
            .call("x.S", "/a/b", "org.freedesktop.DBus.Introspectable",
                  "Introspect")
            .value.get<std::string>();
    for (const char* part :
         {"<interface name=\"x.Empty\">",
          R"(<property name="Fixed" type="i" access="read"/>)",
          R"(<property name="Level" type="d" access="readwrite"/>)"})
    {
        EXPECT_NE(xml.find(part), std::string::npos) << part;
    }
    EXPECT_EQ(xml.find("Secret"), std::string::npos);
}

TEST(Behaviours, HostFollowsTransitions)
{
    const std::string host = "xyz.openbmc_project.State.Host";
    const std::string hostPath = "/xyz/openbmc_project/state/host0";
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

} // namespace morvath::tests
