// SPDX-License-Identifier: Apache-2.0
#include "support/records.hpp"

#include <cstring>

namespace morvath::tests::every_record
{

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

TEST(EveryRecord, IsReleasedOnce)
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

} // namespace morvath::tests::every_record
