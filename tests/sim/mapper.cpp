// SPDX-License-Identifier: Apache-2.0
#include "sim/client.hpp"
#include "sim/platform.hpp"

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <utility>

namespace morvath::tests::mapper
{

// Some objects have two owners; "second" would start after "first" but comes
// before it in byte order.
constexpr auto machine = R"json({"format": 1, "objects": [
{"path": "/m/b", "services": [
  {"name": "x.second", "interfaces": {"x.One": {}}},
  {"name": "x.first", "interfaces": {"x.Two": {}, "x.One": {}}}]},
{"path": "/m/a2/deep", "services": [
  {"name": "x.first", "interfaces": {"x.Two": {}}}]},
{"path": "/m/a2", "services": [
  {"name": "x.first", "interfaces": {"x.One": {}}}]},
{"path": "/m/a10", "services": [
  {"name": "x.first", "interfaces": {"x.One": {}}}]},
{"path": "/m/A1", "services": [
  {"name": "x.Upper", "interfaces": {"x.One": {}}}]},
{"path": "/p/q/r", "services": [{"name": "x.Upper", "interfaces": {
  "x.Assoc": {},
  "xyz.openbmc_project.Association.Definitions": {"Associations": {
    "type": "a(sss)",
    "value": [["up", "down", "/m/b"], ["to", "from", "/none"]]}}}}]}
],
"faults": [
  {"when": {"service": "x.Upper", "member": "Die"}, "then": {"die": true}}
]})json";

// Methods, arguments and what is answered: the first value, or an error. After
// a service has died, what had associations stays as the mapper's own.
constexpr auto questions = R"json([
["GetSubTreePaths", ["/m", 0, ["x.One"]], ["/m/A1", "/m/a10", "/m/a2", "/m/b"]],
["GetSubTreePaths", ["/m/", 0, ["x.One"]], ["/m/A1", "/m/a10", "/m/a2", "/m/b"]],
["GetSubTreePaths", ["", -1, ["x.One", "x.One"]], ["/m/A1", "/m/a10", "/m/a2", "/m/b"]],
["GetSubTreePaths", ["/", 1, ["x.One"]], []],
["GetSubTreePaths", ["/", 2, ["x.One"]], ["/m/A1", "/m/a10", "/m/a2", "/m/b"]],
["GetSubTreePaths", ["/m", 1, ["x.Two", "x.Assoc"]], ["/m/b"]],
["GetSubTreePaths", ["/m", 2, ["x.Two"]], ["/m/a2/deep", "/m/b"]],
["GetSubTreePaths", ["/m/a2", 0, []], ["/m/a2/deep"]],
["GetSubTreePaths", ["/m/a2/deep", 0, []], []],
["GetSubTreePaths", ["/p", 1, []], ["/p/q"]],
["GetSubTreePaths", ["/", 1, []], ["/", "/m", "/p", "/xyz"]],
["GetSubTreePaths", ["//", 0, []], []],
["GetSubTreePaths", ["/m//", 0, []], "NotFound"],
["GetSubTreePaths", ["/m/a", 0, []], "NotFound"],
["GetSubTreePaths", ["/m.b", 0, []], "NotFound"],
["GetSubTree", ["/no", 0, []], "NotFound"],
["GetSubTree", ["/m/", 1, ["x.Two", "x.Upper"]],
 {"/m/b": {"x.first": ["+", "x.One", "x.Two"]}}],
["GetObject", ["/m/b", ["x.One"]],
 {"x.first": ["+", "x.One", "x.Two"], "x.second": ["+", "x.One"]}],
["GetObject", ["/m", []],
 {"x.Upper": ["+"], "x.first": ["+"], "x.second": ["+"], "mapper": []}],
["GetObject", ["/m/b", ["x.Nobody"]], "NotFound"],
["GetObject", ["/m/b/", []], "NotFound"],
["GetObject", ["/none", []], "NotFound"],
["GetAncestors", ["/m/a2/deep", ["x.One"]], {"/m/a2": {"x.first": ["+", "x.One"]}}],
["GetAncestors", ["/m/a2/deep/", ["x.Two", "org.freedesktop.DBus.ObjectManager"]],
 {"/": {"mapper": ["org.freedesktop.DBus.Introspectable",
  "org.freedesktop.DBus.ObjectManager", "org.freedesktop.DBus.Peer",
  "org.freedesktop.DBus.Properties"]}}],
["GetAncestors", ["/m/a", []], "NotFound"],
["GetSubTreePaths", ["/", 0, ["xyz.openbmc_project.Association"]],
 ["/m/b/down", "/p/q/r/up"]],
["GetObject", ["/p/q/r/up", []], {"mapper": ["xyz.openbmc_project.Association"]}],
["GetObject", ["/p", []], {"x.Upper": ["+"], "mapper": []}],
["GetAssociatedSubTreePaths", ["/p/q/r/up", "/m", 0, ["x.One"]], ["/m/b"]],
["GetAssociatedSubTreePaths", ["/p/q/r/up", "/p", 0, []], []],
["GetAssociatedSubTreePaths", ["/p/q/r/up", "/no", 0, []], "NotFound"],
["GetAssociatedSubTree", ["/p/q/r/up", "/", 2, ["x.Two"]],
 {"/m/b": {"x.first": ["+", "x.One", "x.Two"]}}],
["GetAssociatedSubTreePathsById", ["r", "/p", ["x.Assoc"], "up", ["x.One"]], ["/m/b"]],
["GetAssociatedSubTreePathsById", ["r", "/p", ["x.Assoc"], "up", ["x.Assoc"]], []],
["GetAssociatedSubTreePathsById", ["q", "/p", ["x.Assoc"], "up", []], []],
["GetAssociatedSubTreeById", ["r", "/p", ["x.Assoc"], "up", ["x.Two"]],
 {"/m/b": {"x.first": ["+", "x.One", "x.Two"]}}],
["Set", {"type": "a(sss)", "value": []}, null],
["GetSubTreePaths", ["/", 0, ["xyz.openbmc_project.Association"]], []],
["Set", {"type": "a(sss)", "value": [["up", "", "/m/b"]]}, null],
["GetSubTreePaths", ["/", 0, ["xyz.openbmc_project.Association"]], ["/p/q/r/up"]],
["Die", [], null],
["GetSubTreePaths", ["/", 0, ["x.One"]], ["/m/a10", "/m/a2", "/m/b"]],
["GetSubTreePaths", ["/", 0, ["xyz.openbmc_project.Association"]], []],
["GetSubTreePaths", ["/m/A1", 0, []], "NotFound"],
["GetObject", ["/p/q/r", []], {"mapper": []}],
["GetSubTreePaths", ["/p", 0, ["x.Assoc"]], []]
])json";

/** The rows are short: "+" is what each object has, "mapper" the mapper. */
Json written(std::string text)
{
    const std::pair<const char*, const char*> words[]{
        {R"("\+")", R"("org.freedesktop.DBus.Introspectable",
            "org.freedesktop.DBus.Peer", "org.freedesktop.DBus.Properties")"},
        {R"("mapper")", R"("xyz.openbmc_project.ObjectMapper")"},
        {"NotFound", "xyz.openbmc_project.Common.Error.ResourceNotFound"}};
    for (const auto& [word, meaning] : words)
    {
        text = std::regex_replace(text, std::regex(word), meaning);
    }
    return Json::parse(text);
}

TEST(Mapper, AnswersAsTheRealOne)
{
    const sim::Platform platform{sim::Scenario::parse(machine, "machine")};
    Client client;
    EXPECT_EQ(
        client.properties("xyz.openbmc_project.ObjectMapper", "/p/q/r/up",
                          {"xyz.openbmc_project.Association", "endpoints"}),
        Json{"/m/b"});
    for (const auto& row : written(questions))
    {
        if (row[0] == "Set")
        {
            client.properties("x.Upper", "/p/q/r",
                              {"xyz.openbmc_project.Association.Definitions",
                               "Associations", row[1]});
            continue;
        }
        if (row[0] == "Die")
        {
            EXPECT_EQ(client.call("x.Upper", "/m/A1", "x.Any", "Die"),
                      "org.freedesktop.DBus.Error.NoReply");
            continue;
        }
        EXPECT_EQ(client.mapper(row[0], row[1]), row[2]) << row[0] << row[1];
    }
    EXPECT_EQ(client.properties("x.Upper", "/m/A1", {""}),
              "org.freedesktop.DBus.Error.ServiceUnknown");
}

} // namespace morvath::tests::mapper
