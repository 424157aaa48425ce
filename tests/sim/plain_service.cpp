// SPDX-License-Identifier: Apache-2.0
#include "sim/client.hpp"
#include "sim/platform.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace morvath::tests::plain_service
{

constexpr auto introspectable = "org.freedesktop.DBus.Introspectable";

constexpr auto machine = R"({"format": 1, "objects": [
{"path": "/a/b", "services": [{"name": "x.S", "interfaces": {
  "x.First": {
    "Name": {"type": "s", "value": "one"},
    "Fixed": {"type": "i", "value": -5, "readOnly": true},
    "Secret": {"type": "u", "value": 7, "hidden": true},
    "Zero": {"type": "b", "value": true}},
  "x.Empty": {},
  "x.Last": {
    "Name": {"type": "s", "value": "two"},
    "Level": {"type": "d", "value": "nan"}}}}]},
{"path": "/a/b/c", "services": [{"name": "x.S", "interfaces": {
  "x.Last": {"Level": {"type": "d", "value": 2.5, "readOnly": true}}}}]},
{"path": "/bare", "services": [{"name": "x.Bare", "interfaces": {}}]}]})";

struct Values
{
    // sd-bus frees the old text and keeps a copy of the new one.
    char* name = strdup("one");
    char* otherName = strdup("two");
    int32_t fixed = -5;
    uint32_t secret = 7;
    int zero = 1;
    double level = std::nan("");
    double deepLevel = 2.5;

    ~Values()
    {
        std::free(name);
        std::free(otherName);
    }
};

constexpr auto changes = SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE;
constexpr auto open = SD_BUS_VTABLE_UNPRIVILEGED;
constexpr sd_bus_vtable first[]{
    SD_BUS_VTABLE_START(0),
    SD_BUS_WRITABLE_PROPERTY("Name", "s", nullptr, nullptr,
                             offsetof(Values, name), changes | open),
    SD_BUS_PROPERTY("Fixed", "i", nullptr, offsetof(Values, fixed), changes),
    SD_BUS_WRITABLE_PROPERTY("Secret", "u", nullptr, nullptr,
                             offsetof(Values, secret),
                             SD_BUS_VTABLE_HIDDEN | open),
    SD_BUS_WRITABLE_PROPERTY("Zero", "b", nullptr, nullptr,
                             offsetof(Values, zero), changes | open),
    SD_BUS_VTABLE_END};
constexpr sd_bus_vtable empty[]{SD_BUS_VTABLE_START(0), SD_BUS_VTABLE_END};
constexpr sd_bus_vtable last[]{
    SD_BUS_VTABLE_START(0),
    SD_BUS_WRITABLE_PROPERTY("Name", "s", nullptr, nullptr,
                             offsetof(Values, otherName), changes | open),
    SD_BUS_WRITABLE_PROPERTY("Level", "d", nullptr, nullptr,
                             offsetof(Values, level), changes | open),
    SD_BUS_VTABLE_END};
constexpr sd_bus_vtable deep[]{SD_BUS_VTABLE_START(0),
                               SD_BUS_PROPERTY("Level", "d", nullptr,
                                               offsetof(Values, deepLevel),
                                               changes),
                               SD_BUS_VTABLE_END};

/** The same as somebody would write it for sd-bus. */
class PlainService
{
  public:
    PlainService()
    {
        for (const auto& [interface, table] :
             {std::pair<const char*, const sd_bus_vtable*>{"x.First", first},
              {"x.Empty", empty},
              {"x.Last", last}})
        {
            sim::check(sd_bus_add_object_vtable(bus.get(), nullptr, "/a/b",
                                                interface, table, &values),
                       interface);
        }
        sim::check(sd_bus_add_object_vtable(bus.get(), nullptr, "/a/b/c",
                                            "x.Last", deep, &values),
                   "/a/b/c");
        sim::check(sd_bus_request_name(bus.get(), "x.Plain", 0), "x.Plain");
        thread = std::jthread(std::bind_front(&PlainService::serve, this));
    }

  private:
    void serve(const std::stop_token& end) const
    {
        constexpr uint64_t tick = 10'000;
        while (!end.stop_requested())
        {
            if (sd_bus_process(bus.get(), nullptr) == 0)
            {
                sd_bus_wait(bus.get(), tick);
            }
        }
    }

    Values values;
    sim::Bus bus = sim::openBus("");
    std::jthread thread;
};

struct Question
{
    std::string path;
    std::string interface;
    std::string member;
    std::string types{};
    Json arguments = Json::array();
};

Question get(const char* path, const char* interface, const char* name)
{
    return {path, propertiesInterface, "Get", "ss",
            Json::array({interface, name})};
}

Question getAll(const char* path, const char* interface)
{
    return {path, propertiesInterface, "GetAll", "s", interface};
}

Question set(const char* name, const char* type, const Json& value)
{
    return {"/a/b", propertiesInterface, "Set", "ssv",
            Json::array({"x.First", name, {{"type", type}, {"value", value}}})};
}

std::vector<Question> questions()
{
    constexpr auto peer = "org.freedesktop.DBus.Peer";
    return {get("/a/b", "x.First", "Name"),
            get("/a/b", "x.Last", "Name"),
            get("/a/b", "x.Last", "Level"),
            get("/a/b", "x.First", "Secret"),
            get("/a/b", "x.First", "Level"),
            get("/a/b", "x.None", "Name"),
            get("/a/b", peer, "Name"),
            get("/a/b", "", "Name"),
            get("/a", "x.First", "Name"),
            get("/a/b/c", "x.Last", "Level"),
            get("/none", "x.First", "Name"),
            getAll("/a/b", ""),
            getAll("/a/b", "x.First"),
            getAll("/a/b", "x.Empty"),
            getAll("/a/b", "x.None"),
            getAll("/a/b", propertiesInterface),
            getAll("/a/b/c", ""),
            getAll("/a", ""),
            getAll("/none", ""),
            {"/a/b", introspectable, "Introspect"},
            {"/a/b/c", introspectable, "Introspect"},
            {"/a", introspectable, "Introspect"},
            {"/", introspectable, "Introspect"},
            {"/none", introspectable, "Introspect"},
            {"/a/b", peer, "Ping"},
            {"/none", peer, "Ping"},
            {"/a/b", "x.First", "Method"},
            {"/a/b", propertiesInterface, "Get", "s", "x.First"},
            {"/a/b", propertiesInterface, "GetAll", "u", 1},
            set("Name", "s", "new"),
            set("Name", "i", 3),
            set("Fixed", "i", 3),
            set("Secret", "u", 8),
            set("Zero", "b", false),
            set("Other", "i", 3),
            getAll("/a/b", ""),
            get("/a/b", "x.First", "Secret")};
}

TEST(Service, AnswersAsOneWrittenForSdBus)
{
    const PlainService plain;
    const sim::Platform platform(sim::Scenario::parse(machine, "machine"));
    Client client;
    for (const auto& one : questions())
    {
        const auto ask = [&](const char* service) {
            const auto answer =
                client.call(service, one.path, one.interface, one.member,
                            one.types, one.arguments);
            return answer.dump() + ' ' + client.message;
        };
        const auto real = ask("x.Plain");
        EXPECT_EQ(ask("x.S"), real)
            << one.path << ' ' << one.member << ' ' << one.arguments;
    }
    EXPECT_EQ(client.getAll("x.S", "/a/b", "").dump(),
              R"([["Name",{"type":"s","value":"two"}],)"
              R"(["Level",{"type":"d","value":"nan"}],)"
              R"(["Name",{"type":"s","value":"new"}],)"
              R"(["Fixed",{"type":"i","value":-5}],)"
              R"(["Zero",{"type":"b","value":false}]])");
    // What sd-bus itself does not know: an object without an interface.
    EXPECT_EQ(client.getAll("x.Bare", "/bare", ""), Json::object());
    const std::string xml =
        client.call("x.Bare", "/bare", introspectable, "Introspect");
    EXPECT_EQ(xml.rfind("<interface"),
              xml.find("<interface name=\"org.freedesktop.DBus.Properties"));
    EXPECT_TRUE(xml.ends_with(" </interface>\n</node>\n"));
}

} // namespace morvath::tests::plain_service
