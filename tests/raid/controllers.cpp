// SPDX-License-Identifier: Apache-2.0
#include "raid/raid_library.hpp"

#include <numeric>

namespace morvath::tests::controllers
{

Lines controllersOf(const Json& section)
{
    return raidLinesOf<getRaidControllerInfo>(section);
}

Lines drivesOf(const Json& section)
{
    return raidLinesOf<getRaidHddTableInfo>(section);
}

TEST(RaidControllers, AreUnknownWhereTheyAreNotConfigured)
{
    const std::string left =
        "0|left|b|one||three|four|d|c|0xabcd|0x0015|0x0102|0x0304|SAS, SATA|"
        "0/1|PCIE|255|65535|0|0";
    const std::string right =
        "0|right||unknown|unknown|unknown|unknown|||0x0000|0x0000|0x0000|"
        "0x0000|SAS, SATA||PCIE|0|0|0|0";
    EXPECT_EQ(controllersOf(twoControllers()), (Lines{"0", left, right}));
    EXPECT_EQ(controllersOf({{"controllers", Json::array()}}), Lines{"0"});
}

// The level of drive 4 is that of the second controller's: it comes later.
const Lines drivesOfTwo{
    "0", "0|RAID5|Online|L4|left|0|0", "0|RAID1|Hot Spare|L5|left|0|0",
    "0|RAID5|Online|R4|right|0|0", "0|-|Unknown|R65535|right|0|0"};

TEST(MemberDrives, ShareLevelsByTheirIdAlone)
{
    EXPECT_EQ(drivesOf(twoControllers()), drivesOfTwo);
}

TEST(MemberDrives, HaveTheLevelOfTheLastLogicalDrive)
{
    std::vector<int> members(255);
    std::iota(members.begin(), members.end(), 1);
    const Json section{
        {"controllers",
         {{{"raid_id", 1},
           {"physical",
            {{{"device_id", 255}}, {{"device_id", 256}}, {{"device_id", 7}}}},
           {"logical",
            {{{"id", 9}, {"raid_level", 5}, {"members", members}},
             {{"id", 3}, {"raid_level", 1}, {"members", {6, 7}}}}}}}},
        {"texts", {{"raid_level", {{"1", "RAID1"}, {"5", "RAID5"}}}}}};
    EXPECT_EQ(drivesOf(section),
              (Lines{"0", "0|RAID5|Unknown|||0|0", "0|-|Unknown|||0|0",
                     "0|RAID1|Unknown|||0|0"}));
}

TEST(MemberDrives, LackTheTextsOfAnUnreadableController)
{
    auto expected = drivesOfTwo;
    expected[2] = "0|-|-|-|-|0|0";
    EXPECT_EQ(drivesOf(withFault(twoControllers(), "getRaidInfoById", 2, -1)),
              expected);
    // Asked for is the controller that the drive's own record names.
    auto section = twoControllers();
    section["controllers"][0]["physical"][1]["raw"] = {{"0", "08000000"}};
    EXPECT_EQ(drivesOf(section), expected);
}

TEST(MemberDrives, ReadTextsToTheEndOfTheirRecordAtMost)
{
    auto section = twoControllers();
    auto& drive = section["controllers"][0]["physical"][0];
    drive["text80"] = "12345678";
    drive["interface_type"] = 'i';
    drive["link_speed"] = 's';
    EXPECT_EQ(drivesOf(section)[1], "0|RAID5|Online|12345678i|left|0|0");
    drive["raw"] = {{"89", "6a6b" + std::string(2 * 122, '4')}};
    EXPECT_EQ(drivesOf(section)[1], "0|RAID5|Online|12345678ijk" +
                                        std::string(122, 'D') + "|left|0|0");
}

TEST(MemberDrives, CopeWithAManagerThatGoes)
{
    EXPECT_EQ(
        drivesOf(withFault(twoControllers(), "checkRaidMgrExist", 2, 0)),
        (Lines{"0", "0|-|Online|L4|left|0|0", "0|-|Hot Spare|L5|left|0|0",
               "0|-|Online|R4|right|0|0", "0|-|Unknown|R65535|right|0|0"}));
    EXPECT_EQ(drivesOf(withFault(twoControllers(), "checkRaidMgrExist", 3, 0)),
              Lines{"0"});
}

TEST(RaidTables, FailAsTheLibraryDoes)
{
    const auto controllers = outputsOf<getRaidControllerInfo>;
    const auto drives = outputsOf<getRaidHddTableInfo>;
    const auto untouched = "-4 untouched 77";
    const auto none = "0 untouched 0";
    const auto counted = "-4 array 2";
    // The call that failed is the last one of so many.
    struct
    {
        std::string (*outputs)(int32_t);
        const char* operation;
        unsigned call;
        int result;
        const char* expected;
        unsigned calls;
    } const cases[]{
        {controllers, "checkRaidMgrExist", 1, 0, none, 1},
        {controllers, "getRaidIdList", 1, 9, untouched, 2},
        {controllers, "getRaidInfoById", 1, -1, counted, 3},
        {controllers, "getRaidInfoById", 2, 9, counted, 4},
        {drives, "checkRaidMgrExist", 1, 0, none, 1},
        {drives, "getRaidIdList", 1, 1, untouched, 3},
        {drives, "getLogDevIdList", 2, 1, untouched, 6},
        {drives, "getLogDevInfoById", 3, -7, untouched, 8},
        {drives, "getRaidIdList", 2, 1, untouched, 10},
        {drives, "getPhyDevIdList", 2, 1, untouched, 14},
        {drives, "getPhyDevInfoById", 4, -7, untouched, 16},
    };
    for (const auto& one : cases)
    {
        const RaidLibrary library(
            withFault(twoControllers(), one.operation, one.call, one.result));
        EXPECT_EQ(one.outputs(77), one.expected) << one.operation;
        unsigned calls = 0;
        for (const auto& [operation, count] : library.calls())
        {
            calls += count;
        }
        EXPECT_EQ(calls, one.calls) << one.operation << one.call;
    }
}

} // namespace morvath::tests::controllers
