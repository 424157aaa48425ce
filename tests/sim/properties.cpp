// SPDX-License-Identifier: Apache-2.0
#include "client.hpp"
#include "sim/platform.hpp"

#include <gtest/gtest.h>

#include <cmath>
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

constexpr const char* values = R"json({"format": 1, "objects": [
{"path": "/v", "services": [{"name": "x.V", "interfaces": {"x.V": {
  "Bytes": {"type": "ay", "value": [0, 255]},
  "Whole": {"type": "(bnqiuxt)", "value": [true, -32768, 65535, -2147483648,
    4294967295, -9223372036854775808, 18446744073709551615]},
  "Real": {"type": "ad", "value": [0.5, "nan", "inf", "-inf", 3]},
  "Names": {"type": "(sog)", "value": ["ä", "/o", "a{sv}"]},
  "Map": {"type": "a{sv}", "value": {"k": {"type": "as", "value": ["x", "y"]}}},
  "Numbered": {"type": "a{ub}", "value": [[3, false], [3, true]]}}}}]}]})json";

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
        EXPECT_EQ(client.get("x.S", c.path, c.interface, c.name).shown(), c.get)
            << c.path << " " << c.interface << " " << c.name;
        EXPECT_EQ(client.getAll("x.S", c.path, c.interface).error,
                  errorName(c.getAllError))
            << c.path << " " << c.interface;
    }
    EXPECT_EQ(client.get("x.S", "/a/b", "x.None", "P").message,
              "Unknown interface x.None or property P.");
}

TEST_F(Properties, GetAllListsTheLastInterfaceFirst)
{
    const Reply all = client.getAll("x.S", "/a/b", "");
    EXPECT_EQ(all.names(), (std::vector<std::string>{"Name", "Level", "Name",
                                                     "Fixed", "Mode"}));
    EXPECT_EQ(sim::toJson(all.values[0].members()[0]).dump(),
              R"(["Name",{"type":"s","value":"two"}])");
    EXPECT_EQ(client.getAll("x.S", "/a/b", "x.First").names(),
              (std::vector<std::string>{"Name", "Fixed", "Mode"}));
    EXPECT_TRUE(client.getAll("x.S", "/a/b", "x.Empty").names().empty());
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
        {"Name", number(3), errorName("InvalidArgs"),
         "Incorrect parameters for property 'Name', expected 's', got 'i'."},
        {"Fixed", number(3), errorName("PropertyReadOnly"),
         "Property 'Fixed' is not writable."},
        {"Other", number(3), errorName("UnknownProperty"),
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
            .shown()
            .get<std::string>();
    for (const char* part :
         {"<interface name=\"x.Empty\">",
          R"(<property name="Fixed" type="i" access="read"/>)",
          R"(<property name="Level" type="d" access="readwrite"/>)"})
    {
        EXPECT_NE(xml.find(part), std::string::npos) << part;
    }
    EXPECT_EQ(xml.find("Secret"), std::string::npos);
}

TEST(Values, EveryTypeArrivesAsItWasWritten)
{
    const sim::Platform platform(sim::Scenario::parse(values, "values"));
    Client client;
    const auto shown = [&](const std::string& name) {
        return client.get("x.V", "/v", "x.V", name).shown().dump();
    };
    EXPECT_EQ(shown("Bytes"), "[0,255]");
    EXPECT_EQ(shown("Whole"), "[true,-32768,65535,-2147483648,4294967295,"
                              "-9223372036854775808,18446744073709551615]");
    EXPECT_EQ(shown("Real"), R"([0.5,"nan","inf","-inf",3.0])");
    EXPECT_EQ(shown("Names"), R"(["ä","/o","a{sv}"])");
    EXPECT_EQ(shown("Map"), R"({"k":{"type":"as","value":["x","y"]}})");
    EXPECT_EQ(shown("Numbered"), "[[3,false],[3,true]]");
}

} // namespace morvath::tests
