// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "support/machine.hpp"

#include <gtest/gtest.h>
#include <sdbusplus/exception.hpp>

#include <algorithm>
#include <cstdlib>

namespace morvath::tests::mapper
{

constexpr auto wanted = "com.example.Wanted";
const Json wantedOnly{{wanted, Json::object()}};

Machine fans()
{
    return Machine()
        .owns("/fans/b", "com.example.B", wantedOnly)
        .owns("/fans/a10", "com.example.Fans.Two", wantedOnly)
        .owns("/fans/a2", "com.example.Fans.Two", wantedOnly)
        .owns("/fans/a2", "com.example.A",
              {{wanted, Json::object()}, {"com.example.Also", Json::object()}})
        .owns("/fans/c", "com.example.Other",
              {{"com.example.Other", Json::object()}});
}

/** The paths that were found. */
struct Paths
{
    char** paths = nullptr;
    uint32_t count = 0;

    ~Paths()
    {
        std::for_each_n(paths, count, std::free);
        std::free(paths);
    }

    int32_t find(const char* prefix, const char* root = "/")
    {
        return getDbusInterface(prefix, root, wanted, &paths, &count);
    }
};

TEST(FindObjects, MatchesTheFirstOwnerAgainstThePrefix)
{
    sim::Platform platform(fans().scenario());
    const std::pair<const char*, std::vector<std::string>> cases[]{
        {"", {"/fans/a10", "/fans/a2", "/fans/b"}},
        {"com.example.Fans", {"/fans/a10"}},
        {"com.example.A", {"/fans/a2"}},
        {"com.example.Fans.Two.More", {}},
    };
    for (const auto& [prefix, expected] : cases)
    {
        Paths found;
        EXPECT_EQ(found.find(prefix), 0);
        EXPECT_NE(found.paths, nullptr);
        EXPECT_TRUE(std::equal(found.paths, found.paths + found.count,
                               expected.begin(), expected.end()))
            << prefix;
    }
}

TEST(FindObjects, AddsToTheCounter)
{
    sim::Platform platform(fans().scenario());
    Paths found{nullptr, 5};
    EXPECT_EQ(found.find("", "/fans"), 0);
    EXPECT_EQ(found.count, 8u);
    found.count = 3;
}

TEST(ListObjects, AddsAllOwnersInOrder)
{
    sim::Platform platform(fans().scenario());
    SubTree tree{{"/before", {}}};
    EXPECT_EQ(getSubTree("/fans", wanted, &tree), 0);
    ASSERT_EQ(tree.size(), 4u);
    EXPECT_EQ(tree[0].first, "/before");
    EXPECT_EQ(tree[1].first, "/fans/a10");
    EXPECT_EQ(tree[2].first, "/fans/a2");
    ASSERT_EQ(tree[2].second.size(), 2u);
    EXPECT_EQ(tree[2].second[0].first, "com.example.A");
    const std::string common = "org.freedesktop.DBus.";
    const std::vector<std::string> interfaces{
        "com.example.Also", wanted, common + "Introspectable", common + "Peer",
        common + "Properties"};
    EXPECT_EQ(tree[2].second[0].second, interfaces);

    const auto calls = platform.calls();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].service, "xyz.openbmc_project.ObjectMapper");
    EXPECT_EQ(calls[0].path, "/xyz/openbmc_project/object_mapper");
    EXPECT_EQ(calls[0].interface, "xyz.openbmc_project.ObjectMapper");
    EXPECT_EQ(calls[0].member, "GetSubTree");
    EXPECT_EQ(*calls[0].arguments, Json({"/fans", 0, Json::array({wanted})}));
}

TEST(ListObjects, GivesMinusOneForAnEmptyAnswer)
{
    const auto machine =
        fans().fault({{"member", "GetSubTree"}}, {{"reply", {{"type", ""}}}});
    sim::Platform platform(machine.scenario());
    SubTree tree;
    EXPECT_EQ(getSubTree("/fans", wanted, &tree), -1);
    EXPECT_TRUE(tree.empty());
}

TEST(FindObjects, TakesAnObjectWithoutOwnersAsOneWithoutName)
{
    sim::Platform platform(
        Machine()
            .fault({{"member", "GetSubTree"}},
                   {{"reply",
                     property("a{sa{sas}}", {{"/orphan", Json::object()}})}})
            .scenario());
    Paths found;
    EXPECT_EQ(found.find("com"), 0);
    EXPECT_EQ(found.count, 0u);
    std::free(std::exchange(found.paths, nullptr));
    EXPECT_EQ(found.find(""), 0);
    EXPECT_EQ(found.count, 1u);

    char*** rows = nullptr;
    int32_t rowCount = 0;
    EXPECT_THROW(getDbusTableData("/", wanted, nullptr, 0, &rows, &rowCount),
                 sdbusplus::exception::SdBusError);
    EXPECT_EQ(rowCount, 0);
    std::free(rows);
}

} // namespace morvath::tests::mapper
