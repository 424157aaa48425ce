// SPDX-License-Identifier: Apache-2.0
#include "raid/raid_library.hpp"

namespace morvath::tests::controllers
{

Lines controllersOf(const Json& section)
{
    return raidLinesOf<getRaidControllerInfo>(section);
}

TEST(RaidControllers, AreThoseOfTheServer)
{
    EXPECT_EQ(controllersOf(*sim::Scenario::standard().raid),
              (Lines{"0", "0|Drisko DR-9408 RAID|DR9408-66-0A17C2|"
                          "Drisko Storage|DR-9408|8 GB|12 Gb/s|"
                          "5a3c9b0000940801|7.21.03.00|0xfa17|0x0940|0xfa17|"
                          "0x0015|SAS, SATA|RAID0/RAID1/RAID5/RAID6/RAID10/"
                          "RAID50/RAID60|PCIE|63|8|0|0"}));
}

TEST(RaidControllers, AreUnknownWhereTheyAreNotConfigured)
{
    const std::string left =
        "0|left|b|one||three|four|d|c|0xabcd|0x0015|0x0000|0x0000|SAS, SATA|"
        "0/1|PCIE|255|65535|0|0";
    const std::string right =
        "0|right||unknown|unknown|unknown|unknown|||0x0000|0x0000|0x0000|"
        "0x0000|SAS, SATA||PCIE|0|0|0|0";
    EXPECT_EQ(controllersOf(twoControllers()), (Lines{"0", left, right}));
    EXPECT_EQ(controllersOf({{"controllers", Json::array()}}), Lines{"0"});
}

TEST(RaidControllers, ReadTextsToTheEndOfTheirRecordAtMost)
{
    const std::string name(80, 'n');
    const std::string rest(399 - 164, 'D');
    const Json controller{
        {"raid_id", 1},
        {"name", name},
        {"text84", "next"},
        {"raw", {{"164", std::string(2 * rest.size(), '4')}}}};
    EXPECT_EQ(controllersOf({{"controllers", {controller}}}),
              (Lines{"0", "0|" + name +
                              "next|next|unknown|unknown|unknown|"
                              "unknown|" +
                              rest +
                              "||0x4444|0x4444|0x4444|0x4444|SAS, SATA||PCIE|"
                              "68|17476|0|0"}));
}

TEST(RaidControllers, FailAsTheLibraryDoes)
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
        {"getRaidIdList", 1, 9, untouched},
        {"getRaidInfoById", 1, -1, "-4, array, count 2"},
        {"getRaidInfoById", 2, 9, "-4, array, count 2"},
    };
    for (const auto& one : cases)
    {
        const RaidLibrary library(
            withFault(twoControllers(), one.operation, one.call, one.result));
        EXPECT_EQ(outputsOf<RaidControllerEntry>(getRaidControllerInfo),
                  one.outputs)
            << one.operation;
        // Nothing is asked after the one that failed.
        EXPECT_EQ(library.calls().rbegin()->first, one.operation);
        EXPECT_EQ(library.calls()[one.operation], one.call) << one.operation;
    }
}

} // namespace morvath::tests::controllers
