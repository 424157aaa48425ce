// SPDX-License-Identifier: Apache-2.0
#include "raid/raid_library.hpp"

namespace morvath::tests::member_drives
{

Lines drivesOf(const Json& section)
{
    return raidLinesOf<getRaidHddTableInfo>(section);
}

// The level of drive 4 is that of the second controller's: it comes later.
const Lines drivesOfTwo{
    "0", "0|RAID5|Online|L4|left|0|0", "0|RAID1|Hot Spare|L5|left|0|0",
    "0|RAID5|Online|R4|right|0|0", "0|-|Unknown|R65535|right|0|0"};

TEST(MemberDrives, AreThoseOfTheServer)
{
    const auto lines = drivesOf(*sim::Scenario::standard().raid);
    ASSERT_EQ(lines.size(), 9u);
    EXPECT_EQ(lines[5], "0|RAID5|Online|Slot 4|Drisko DR-9408 RAID|0|0");
    EXPECT_EQ(lines[6], "0|RAID1|Online|Slot 5|Drisko DR-9408 RAID|0|0");
    EXPECT_EQ(lines[8], "0|-|Hot Spare|Slot 7|Drisko DR-9408 RAID|0|0");
}

TEST(MemberDrives, ShareLevelsByTheirIdAlone)
{
    EXPECT_EQ(drivesOf(twoControllers()), drivesOfTwo);
}

TEST(MemberDrives, HaveTheLevelOfTheLastLogicalDrive)
{
    std::vector<int> members;
    for (int id = 1; id <= 255; ++id)
    {
        members.push_back(id);
    }
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

TEST(MemberDrives, FailAsTheLibraryDoes)
{
    const auto untouched = "-4, array untouched, count untouched";
    struct
    {
        const char* operation;
        unsigned call;
        int result;
        const char* outputs;
    } const cases[]{
        {"checkRaidMgrExist", 1, 0, "0, array untouched, count 0"},
        {"getRaidIdList", 1, 1, untouched},
        {"getLogDevIdList", 2, 1, untouched},
        {"getLogDevInfoById", 3, -7, untouched},
        {"getRaidIdList", 2, 1, untouched},
        {"getPhyDevIdList", 2, 1, untouched},
        {"getPhyDevInfoById", 4, -7, untouched},
    };
    for (const auto& one : cases)
    {
        const RaidLibrary library(
            withFault(twoControllers(), one.operation, one.call, one.result));
        EXPECT_EQ(outputsOf<RaidHddEntry>(getRaidHddTableInfo), one.outputs)
            << one.operation << " " << one.call;
        // The one that failed was the last that could.
        EXPECT_EQ(library.calls()[one.operation], one.call) << one.operation;
        EXPECT_EQ(library.calls().count("getRaidInfoById"), 0u);
    }
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

} // namespace morvath::tests::member_drives
