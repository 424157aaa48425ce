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

const std::string notFound =
    "xyz.openbmc_project.Common.Error.ResourceNotFound";
const std::string association = "xyz.openbmc_project.Association";
const std::string mapper = "xyz.openbmc_project.ObjectMapper";
const Json none = Json::array();

class Mapper : public testing::Test
{
  protected:
    Json paths(const std::string& root, int32_t depth, const Json& interfaces)
    {
        return client
            .mapper("GetSubTreePaths", "sias",
                    Json::array({root, depth, interfaces}))
            .value;
    }

    /** From names to interfaces, or the name of the error. */
    Json owners(const std::string& path, const Json& interfaces)
    {
        return client
            .mapper("GetObject", "sas", Json::array({path, interfaces}))
            .value;
    }

    /** The names alone. */
    Json ownerNames(const std::string& path, const Json& wanted)
    {
        auto names = none;
        const auto all = owners(path, wanted);
        for (const auto& [name, interfaces] : all.items())
        {
            names.push_back(name);
        }
        return names;
    }

    void kill(const std::string& service)
    {
        EXPECT_EQ(client.call(service, "/m/A1", "x.Any", "Die").error,
                  "org.freedesktop.DBus.Error.NoReply");
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
        int32_t depth;
        std::vector<std::string> interfaces;
        Json expected;
    };
    const Json ones{"/m/A1", "/m/a10", "/m/a2", "/m/b"};
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
        {"//", 0, {}, none},
        {"/m//", 0, {}, notFound},
        {"/m/a", 0, {}, notFound},
        {"/m.b", 0, {}, notFound},
    };
    for (const auto& [root, depth, interfaces, expected] : cases)
    {
        EXPECT_EQ(paths(root, depth, interfaces), expected)
            << root << " " << depth;
    }
    const auto unknown =
        client.mapper("GetSubTree", "sias", Json::array({"/no", 0, none}));
    EXPECT_EQ(unknown.error, notFound);
    EXPECT_EQ(unknown.message, "The resource is not found.");
}

TEST_F(Mapper, SubTreeListsWantedOwnersWithAllInterfaces)
{
    const auto reply = client.mapper(
        "GetSubTree", "sias", Json::array({"/m/", 1, {"x.Two", "x.Upper"}}));
    EXPECT_EQ(reply.value.dump(),
              R"({"/m/b":{"x.first":["org.freedesktop.DBus.Introspectable",)"
              R"("org.freedesktop.DBus.Peer",)"
              R"("org.freedesktop.DBus.Properties","x.One","x.Two"]}})");
}

TEST_F(Mapper, ObjectHasItsOwnersInByteOrder)
{
    EXPECT_EQ(ownerNames("/m/b", {"x.One"}), (Json{"x.first", "x.second"}));
    EXPECT_EQ(ownerNames("/m", none),
              (Json{"x.Upper", "x.first", "x.second", mapper}));
    EXPECT_EQ(owners("/m/b", {"x.Nobody"}), notFound);
    EXPECT_EQ(owners("/m/b/", none), notFound);
    EXPECT_EQ(owners("/none", none), notFound);
}

TEST_F(Mapper, AncestorsAreTheNodesAbove)
{
    const auto above = [&](const std::string& path, const Json& interfaces) {
        return client
            .mapper("GetAncestors", "sas", Json::array({path, interfaces}))
            .value;
    };
    EXPECT_EQ(above("/m/a2/deep", {"x.One"}).dump(),
              R"({"/m/a2":{"x.first":["org.freedesktop.DBus.Introspectable",)"
              R"("org.freedesktop.DBus.Peer",)"
              R"("org.freedesktop.DBus.Properties","x.One"]}})");
    Json names;
    const auto all = above("/m/a2/deep/", none);
    for (const auto& [path, owners] : all.items())
    {
        names.push_back(path);
    }
    EXPECT_EQ(names, (Json{"/", "/m", "/m/a2"}));
    EXPECT_EQ(above("/m/a", none), notFound);
}

TEST_F(Mapper, AssociationsAreObjectsOfTheMapper)
{
    EXPECT_EQ(paths("/", 0, {association}), (Json{"/m/b/down", "/p/q/r/up"}));
    EXPECT_EQ(owners("/p/q/r/up", none), (Json{{mapper, {association}}}));
    EXPECT_EQ(owners("/p/q/r", none)[mapper], none);
    EXPECT_EQ(owners("/p", none)[mapper], none);
    EXPECT_EQ(client.get(mapper, "/p/q/r/up", association, "endpoints").value,
              Json{"/m/b"});
}

TEST_F(Mapper, FollowsAssociations)
{
    const auto ask = [&](const std::string& member, const std::string& types,
                         const Json& arguments) {
        return client.mapper(member, types, arguments).value;
    };
    const auto interfaces = Json::array({"x.One"});
    EXPECT_EQ(ask("GetAssociatedSubTreePaths", "ooias",
                  Json::array({"/p/q/r/up", "/m", 0, interfaces})),
              Json{"/m/b"});
    EXPECT_EQ(ask("GetAssociatedSubTreePaths", "ooias",
                  Json::array({"/p/q/r/up", "/p", 0, none})),
              none);
    EXPECT_EQ(ask("GetAssociatedSubTreePaths", "ooias",
                  Json::array({"/p/q/r/up", "/no", 0, none})),
              notFound);
    EXPECT_EQ(ask("GetAssociatedSubTree", "ooias",
                  Json::array({"/p/q/r/up", "/", 2, interfaces})),
              (Json{{"/m/b", owners("/m/b", interfaces)}}));
    const auto byId = [&](const std::string& id, const Json& wanted) {
        return Json::array({id, "/p", {"x.Assoc"}, "up", wanted});
    };
    EXPECT_EQ(
        ask("GetAssociatedSubTreePathsById", "ssassas", byId("r", interfaces)),
        Json{"/m/b"});
    EXPECT_EQ(
        ask("GetAssociatedSubTreePathsById", "ssassas", byId("r", {"x.Assoc"})),
        none);
    EXPECT_EQ(ask("GetAssociatedSubTreePathsById", "ssassas", byId("q", none)),
              none);
    EXPECT_EQ(ask("GetAssociatedSubTreeById", "ssassas", byId("r", interfaces)),
              (Json{{"/m/b", owners("/m/b", interfaces)}}));
}

TEST_F(Mapper, DeadServiceTakesItsEntriesAlongAndLeavesGhosts)
{
    kill("x.Upper");
    EXPECT_EQ(paths("/", 0, {"x.One"}), (Json{"/m/a10", "/m/a2", "/m/b"}));
    EXPECT_EQ(paths("/", 0, {association}), none);
    EXPECT_EQ(paths("/m/A1", 0, none), notFound);
    // What had associations stays as the mapper's own.
    EXPECT_EQ(owners("/p/q/r", none), (Json{{mapper, none}}));
    EXPECT_EQ(paths("/p", 0, {"x.Assoc"}), none);
    EXPECT_EQ(client.getAll("x.Upper", "/m/A1", "").error,
              "org.freedesktop.DBus.Error.ServiceUnknown");
}

} // namespace morvath::tests
