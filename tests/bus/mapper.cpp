// SPDX-License-Identifier: Apache-2.0
#include "support/records.hpp"

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

TEST(FindObjects, MatchesTheFirstOwnerAgainstThePrefix)
{
    const sim::Platform platform(fans().scenario());
    const std::pair<const char*, Lines> cases[]{
        {"", {"/fans/a10", "/fans/a2", "/fans/b"}},
        {"com.example.Fans", {"/fans/a10"}},
        {"com.example.A", {"/fans/a2"}},
    };
    for (const auto& [prefix, expected] : cases)
    {
        EXPECT_EQ(read(getDbusInterface, prefix, "/", wanted), expected);
    }
    char** paths = nullptr;
    uint32_t count = 5;
    EXPECT_EQ(getDbusInterface("com.example.Fans.Two.More", "/fans", wanted,
                               &paths, &count),
              0);
    EXPECT_EQ(count, 5u);
    EXPECT_NE(paths, nullptr);
    std::free(paths);
    EXPECT_EQ(
        getDbusInterface("com.example.B", "/fans", wanted, &paths, &count), 0);
    EXPECT_EQ(count, 6u);
    std::free(paths[0]);
    std::free(paths);
}

TEST(ListObjects, AddsAllOwnersInOrder)
{
    const sim::Platform platform(fans().scenario());
    SubTree tree{{"/before", {}}};
    EXPECT_EQ(getSubTree("/fans", wanted, &tree), 0);
    ASSERT_EQ(tree.size(), 4u);
    EXPECT_EQ(tree[0].first, "/before");
    EXPECT_EQ(tree[1].first, "/fans/a10");
    EXPECT_EQ(tree[2].first, "/fans/a2");
    ASSERT_EQ(tree[2].second.size(), 2u);
    EXPECT_EQ(tree[2].second[0].first, "com.example.A");
    const std::string common = "org.freedesktop.DBus.";
    EXPECT_EQ(tree[2].second[0].second,
              (Lines{"com.example.Also", wanted, common + "Introspectable",
                     common + "Peer", common + "Properties"}));

    const auto calls = platform.calls();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].service, "xyz.openbmc_project.ObjectMapper");
    EXPECT_EQ(calls[0].path, "/xyz/openbmc_project/object_mapper");
    EXPECT_EQ(calls[0].interface, "xyz.openbmc_project.ObjectMapper");
    EXPECT_EQ(calls[0].member, "GetSubTree");
    EXPECT_EQ(*calls[0].arguments, Json({"/fans", 0, Json::array({wanted})}));
}

Machine answering(const Json& reply)
{
    return fans().fault({{"member", "GetSubTree"}}, {{"reply", reply}});
}

TEST(FindObjects, TakesAnObjectWithoutOwnersAsOneWithoutName)
{
    const auto orphan = property("a{sa{sas}}", {{"/orphan", Json::object()}});
    const sim::Platform platform(answering(orphan).scenario());
    EXPECT_EQ(read(getDbusInterface, "com", "/", wanted), Lines());
    EXPECT_EQ(read(getDbusInterface, "", "/", wanted), Lines{"/orphan"});

    char*** rows = nullptr;
    int32_t count = 0;
    EXPECT_THROW(getDbusTableData("/", wanted, nullptr, 0, &rows, &count),
                 sdbusplus::exception::SdBusError);
    EXPECT_EQ(count, 0);
    std::free(rows);
}

} // namespace morvath::tests::mapper
