// SPDX-License-Identifier: Apache-2.0
#include "sim/client.hpp"
#include "support/machine.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <utility>

namespace morvath::tests::plain_service
{

constexpr auto machine = R"({"format": 1, "objects": [
{"path": "/a/b", "services": [{"name": "x.S", "interfaces": {
  "x.First": {
    "Name": {"type": "s", "value": "one"},
    "Fixed": {"type": "i", "value": -5, "readOnly": true},
    "Secret": {"type": "u", "value": 7, "hidden": true},
    "Zero": {"type": "b", "value": true}},
  "x.Empty": {},
  "x.Last": {
    "Name": {"type": "s", "value": "two", "readOnly": true},
    "Level": {"type": "d", "value": "nan"}}}}]},
{"path": "/a/b/c", "services": [{"name": "x.S", "interfaces": {
  "x.Last": {
    "Name": {"type": "s", "value": "two", "readOnly": true},
    "Level": {"type": "d", "value": "nan"}}}}]},
{"path": "/bare", "services": [{"name": "x.Bare", "interfaces": {}}]}]})";

struct Values
{
    // sd-bus frees the old text and keeps a copy of the new one.
    char* name = strdup("one");
    const char* otherName = "two";
    int32_t fixed = -5;
    uint32_t secret = 7;
    int zero = 1;
    double level = std::nan("");

    ~Values() { std::free(name); }
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
    SD_BUS_PROPERTY("Name", "s", nullptr, offsetof(Values, otherName), changes),
    SD_BUS_WRITABLE_PROPERTY("Level", "d", nullptr, nullptr,
                             offsetof(Values, level), changes | open),
    SD_BUS_VTABLE_END};
struct Table
{
    const char* path;
    const char* interface;
    const sd_bus_vtable* entries;
};

/** The same as somebody would write it for sd-bus. */
class PlainService
{
  public:
    PlainService()
    {
        std::array tables{
            Table{"/a/b", "x.First", first}, Table{"/a/b", "x.Empty", empty},
            Table{"/a/b", "x.Last", last}, Table{"/a/b/c", "x.Last", last}};
        if (!sim::listsLastFirst(bus.get()))
        {
            std::ranges::reverse(tables);
        }
        for (const auto& [path, interface, entries] : tables)
        {
            sim::check(sd_bus_add_object_vtable(bus.get(), nullptr, path,
                                                interface, entries, &values));
        }
        sim::check(sd_bus_request_name(bus.get(), "x.Plain", 0));
        thread = std::jthread([this](const std::stop_token& end) {
            constexpr uint64_t tick = 10'000;
            while (!end.stop_requested())
            {
                if (sd_bus_process(bus.get(), nullptr) == 0)
                {
                    sd_bus_wait(bus.get(), tick);
                }
            }
        });
    }

  private:
    Values values;
    sim::Bus bus = sim::openBus("");
    std::jthread thread;
};

TEST(Service, AnswersAsOneWrittenForSdBus)
{
    const PlainService plain;
    const sim::Platform platform(sim::Scenario::parse(machine, "machine"));
    Client client;
    const std::string bus = "org.freedesktop.DBus.";
    const auto properties = bus + "Properties";
    const auto introspectable = bus + "Introspectable";
    const auto compare = [&](const std::string& path,
                             const std::string& interface, const char* member,
                             const Json& arguments = Json::array()) {
        const auto ask = [&](const char* service) {
            const auto answer =
                client.call(service, path, interface, member, arguments);
            return answer.dump() + ' ' + client.message;
        };
        const auto real = ask("x.Plain");
        EXPECT_EQ(ask("x.S"), real) << path << ' ' << member << arguments;
    };
    const auto compareAll = [&] {
        for (const auto* path : {"/", "/a", "/a/b", "/a/b/c", "/none"})
        {
            compare(path, introspectable, "Introspect");
            compare(path, bus + "Peer", "Ping");
            for (const auto& interface :
                 {std::string(), std::string("x.First"), std::string("x.Empty"),
                  std::string("x.Last"), std::string("x.None"), properties})
            {
                compare(path, properties, "GetAll", {interface});
                for (const auto* name : {"Name", "Level", "Secret"})
                {
                    compare(path, properties, "Get", {interface, name});
                }
            }
        }
    };
    compareAll();
    for (const auto& [name, value] : {std::pair{"Name", text("new")},
                                      {"Name", property("i", 3)},
                                      {"Fixed", property("i", 3)},
                                      {"Secret", property("u", 8)},
                                      {"Zero", property("b", false)},
                                      {"Other", property("i", 3)}})
    {
        compare("/a/b", properties, "Set", {"x.First", name, value});
    }
    compareAll();
    compare("/a/b", "x.First", "Method");
    compare("/a/b", properties, "Get", {"x.First"});
    compare("/a/b", properties, "GetAll", {1});
    EXPECT_EQ(client.properties("x.S", "/a/b", {"x.First"}).dump(),
              R"({"Name":{"type":"s","value":"new"},)"
              R"("Fixed":{"type":"i","value":-5},)"
              R"("Zero":{"type":"b","value":false}})");
    // What sd-bus itself does not know: an object without an interface.
    EXPECT_EQ(client.properties("x.Bare", "/bare", {""}), Json::object());
    const std::string xml =
        client.call("x.Bare", "/bare", introspectable, "Introspect");
    EXPECT_EQ(xml.rfind("<interface"),
              xml.find("<interface name=\"org.freedesktop.DBus.Properties"));
}

} // namespace morvath::tests::plain_service
