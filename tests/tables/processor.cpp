#include "morvath.h"
#include "support/records.hpp"

namespace morvath::tests
{
namespace
{

using Processors = Records<getCpuTableInfo, freeCpuInfoEntry>;

std::string lineOf(const CpuInfoEntry& entry)
{
    const auto& [id, name, maker, version, part, serial, architecture, speed,
                 maximum, cores, threads, l1, l1Again, l2, l3, present, one,
                 two] = entry;
    return describe(id, name, maker, version, part, serial, architecture, speed,
                    maximum, cores, threads, l1, l1Again, l2, l3, present, one,
                    two);
}

TEST(Processors, AreThoseOfTheServer)
{
    EXPECT_EQ(linesOf<Processors>(sim::Scenario::standard(), lineOf),
              (Lines{"0",
                     "0|CPU0|Kelvane Micro|Kelvane K9 6430 32-Core Processor|"
                     "K9-6430-A1|KX09L2260118|x86-64|2600|3800|32|64|2048|2048|"
                     "32768|131072|1|0|0",
                     "0|CPU1|Kelvane Micro|Kelvane K9 6430 32-Core Processor|"
                     "K9-6430-A1|KX09L2260233|x86-64|2600|3800|32|64|2048|2048|"
                     "32768|131072|1|0|0"}));
}

TEST(Processors, FollowTheirProperties)
{
    expectVariants<Processors>(
        "/cpu", "xyz.openbmc_project.Inventory.Item.Cpu",
        {{"LocationCode", text("CPU 1")},
         {"Architecture", text("a.b.Arm")},
         {"CurSpeedInMhz", property("u", 1)},
         {"MaxSpeedInMhz", property("u", 2)},
         {"CoreCount", property("q", 3)},
         {"ThreadCount", property("q", 4)},
         {"L1CacheKiB", property("u", 5)},
         {"L2CacheKiB", property("u", 6)},
         {"L3CacheKiB", property("u", 7)},
         {"Present", property("b", false)}},
        lineOf,
        {
            {"nothing shortened",
             {},
             {"0", "0|CPUCPU 1|null|null|null|null|a.b.Arm|1|2|3|4|5|5|6|7|0|"
                   "0|0"}},
            {"empty location",
             {{"LocationCode", text("")}},
             {"0", "0|CPU|null|null|null|null|a.b.Arm|1|2|3|4|5|5|6|7|0|0|0"}},
            {"no location",
             {{"LocationCode", nullptr}},
             {nullText,
              "0|null|null|null|null|null|null|0|0|0|0|0|0|0|0|0|0|0"}},
            {"no threads",
             {{"ThreadCount", nullptr}},
             {nullText, "0|CPUCPU 1|null|null|null|null|a.b.Arm|1|2|3|0|0|0|0|"
                        "0|0|0|0"}},
            {"cache in words",
             {{"L2CacheKiB", text("much")}},
             {"invalid argument: stoi",
              "0|CPUCPU 1|null|null|null|null|a.b.Arm|1|2|3|4|5|5|0|0|0|0|0"}},
        });
}

} // namespace
} // namespace morvath::tests
