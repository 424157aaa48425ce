// SPDX-License-Identifier: Apache-2.0
#include "support/records.hpp"

#include <cstring>

namespace morvath::tests::table
{

TEST(Tables, CountUpToAnObjectThatCannotBeRead)
{
    const auto dying = Machine::server().fault(
        {{"member", "GetAll"}, {"call", 2}}, {{"die", true}});
    const sim::Platform platform(dying.scenario());
    EXPECT_EQ(outputsOf<getPsuTableInfo>(0), "bus-error untouched 1");
}

TEST(Tables, FollowACounterThatWasNotZero)
{
    const sim::Platform platform(sim::Scenario::standard());
    const auto two = linesOf<getPsuTableInfo>();
    auto more = two;
    more.resize(6, "0|null|null|null|null|null|null|0|0");
    EXPECT_EQ(linesOf<getPsuTableInfo>(3), more);
    EXPECT_EQ(linesOf<getPsuTableInfo>(-1), (Lines{"0", two[1]}));
    EXPECT_EQ(linesOf<getPsuTableInfo>(-2), Lines{"0"});
    EXPECT_EQ(outputsOf<getPsuTableInfo>(-5), "-2 null -3");
}

void fill(char*& text) { text = strdup("text"); }

void fill(auto& number) { number = 1; }

/** Texts are released once, and nothing else changes. */
template <typename Record>
void expectRelease(void (*release)(Record*))
{
    Record record{};
    release(nullptr);
    release(&record);
    std::apply([](auto&... fields) { (fill(fields), ...); }, fieldsOf(record));
    auto expected = lineOf(record);
    for (auto place = expected.find("text"); place != std::string::npos;
         place = expected.find("text"))
    {
        expected.replace(place, 4, "null");
    }
    for (int time = 0; time < 2; ++time)
    {
        release(&record);
        EXPECT_EQ(lineOf(record), expected);
    }
}

TEST(Records, AreReleasedOnce)
{
    expectRelease(freePsuInfoEntry);
    expectRelease(freePcieInfoEntry);
    expectRelease(free_adapter_entry_content);
    expectRelease(freeGpuInfoEntry);
    expectRelease(freeMemInfoEntry);
    expectRelease(freeCpuInfoEntry);
    expectRelease(freeBmcSensorEntry);
    expectRelease(freeBmcNetworkInfoEntry);
    expectRelease(free_port_entry_content);
    expectRelease(freeHddInfoEntry);
    expectRelease(freeRaidControllerEntry);
    expectRelease(free_raid_hdd_entry);
}

} // namespace morvath::tests::table
