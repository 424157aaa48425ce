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

// Some objects have two owners; "second" would start after "first" but comes
// before it in byte order.
constexpr const char* machine = R"json({"format": 1, "objects": [
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

constexpr const char* notFound =
    "xyz.openbmc_project.Common.Error.ResourceNotFound";

class Mapper : public testing::Test
{
  protected:
    Json paths(const std::string& root, std::int32_t depth,
               const std::vector<std::string>& interfaces)
    {
        return client
            .mapper("GetSubTreePaths",
                    {text(root), {"i", depth}, texts(interfaces)})
            .value;
    }

    /** Their names, or the error's. */
    Json owners(const std::string& path,
                const std::vector<std::string>& interfaces)
    {
        const auto reply =
            client.mapper("GetObject", {text(path), texts(interfaces)});
        Json names;
        for (const auto& [name, interfacesOfOwner] : reply.value.items())
        {
            names.push_back(name);
        }
        return reply.error.empty() ? names : reply.value;
    }

    const sim::Platform platform{sim::Scenario::parse(machine, "machine")};
    Client client;
};

} // namespace

TEST_F(Mapper, SubTreeFollowsRootDepthAndInterfaces)
{
    struct Case
    {
        std::string root;
        std::int32_t depth;
        std::vector<std::string> interfaces;
        Json expected;
    };
    const Json ones{"/m/A1", "/m/a10", "/m/a2", "/m/b"};
    const Json none = Json::array();
    const std::vector<Case> cases{
        {"/m", 0, {"x.One"}, ones},
        {"/m/", 0, {"x.One"}, ones},
        {"/", 0, {"x.One"}, ones},
        {"", -1, {"x.One", "x.One"}, ones},
        {"/", 1, {"x.One"}, none},
        {"/", 2, {"x.One"}, ones},
        {"/m", 1, {"x.Two", "x.Assoc"}, {"/m/b"}},
        {"/m", 2, {"x.Two"}, {"/m/a2/deep", "/m/b"}},
        {"/m/a2", 0, {}, {"/m/a2/deep"}},
        {"/m/a2/deep", 0, {}, none},
        {"/p", 1, {}, {"/p/q"}},
        {"/", 1, {}, {"/", "/m", "/p", "/xyz"}},
        {"/m/a", 0, {}, notFound},
        {"/m.b", 0, {}, notFound},
    };
    for (const Case& c : cases)
    {
        EXPECT_EQ(paths(c.root, c.depth, c.interfaces), c.expected)
            << c.root << " " << c.depth;
    }
    const Reply unknown =
        client.mapper("GetSubTree", {text("/no"), {"i", 0}, texts({})});
    EXPECT_EQ(unknown.error, notFound);
    EXPECT_EQ(unknown.message, "The resource is not found.");
}

TEST_F(Mapper, SubTreeListsWantedOwnersWithAllInterfaces)
{
    const Reply reply = client.mapper(
        "GetSubTree", {text("/m/"), {"i", 1}, texts({"x.Two", "x.Upper"})});
    EXPECT_EQ(reply.value.dump(),
              R"({"/m/b":{"x.first":["org.freedesktop.DBus.Introspectable",)"
              R"("org.freedesktop.DBus.Peer",)"
              R"("org.freedesktop.DBus.Properties","x.One","x.Two"]}})");
}

TEST_F(Mapper, ObjectHasItsOwnersInByteOrder)
{
    EXPECT_EQ(owners("/m/b", {"x.One"}), (Json{"x.first", "x.second"}));
    EXPECT_EQ(owners("/m", {}), (Json{"x.Upper", "x.first", "x.second",
                                      "xyz.openbmc_project.ObjectMapper"}));
    EXPECT_EQ(owners("/m/b", {"x.Nobody"}), notFound);
    EXPECT_EQ(owners("/m/b/", {}), notFound);
    EXPECT_EQ(owners("/none", {}), notFound);
}

TEST_F(Mapper, AssociationsAreObjectsOfTheMapper)
{
    const std::string association = "xyz.openbmc_project.Association";
    const std::string mapper = "xyz.openbmc_project.ObjectMapper";
    EXPECT_EQ(paths("/", 0, {association}), (Json{"/m/b/down", "/p/q/r/up"}));
    EXPECT_EQ(client.get(mapper, "/p/q/r/up", association, "endpoints").value,
              Json{"/m/b"});
    EXPECT_EQ(owners("/p/q/r", {}), (Json{"x.Upper", mapper}));
}

TEST_F(Mapper, DeadServiceTakesItsEntriesAlong)
{
    EXPECT_EQ(client.call("x.Upper", "/m/A1", "x.Any", "Die").error,
              "org.freedesktop.DBus.Error.NoReply");
    EXPECT_EQ(paths("/", 0, {"x.One"}), (Json{"/m/a10", "/m/a2", "/m/b"}));
    EXPECT_EQ(paths("/p", 0, {}), notFound);
    EXPECT_EQ(paths("/m/b", 0, {}), Json::array());
    EXPECT_EQ(client.getAll("x.Upper", "/m/A1", "").error,
              "org.freedesktop.DBus.Error.ServiceUnknown");
}

} // namespace morvath::tests
