// SPDX-License-Identifier: Apache-2.0
#include "support/records.hpp"

namespace morvath::tests::inventory
{

const std::string item = "xyz.openbmc_project.Inventory.Item.";

TEST(PcieSlots, ConvertTheirPresence)
{
    const std::string unknown = "0|null|Maker||0|0|0";
    expectVariants<getPcieTableInfo>(
        "/slot", item + "PCIeSlot",
        {{"Manufacturer", text("Maker")}, {"LocationCode", text("")}},
        {{{{"Present", property("b", true)}}, {"0", "0|null|Maker||1|0|0"}},
         {{{"Present", text(" 12 cards")}}, {"0", "0|null|Maker||12|0|0"}},
         {{{"Present", property("d", -3.75)}}, {"0", "0|null|Maker||-3|0|0"}},
         {{}, {nullText, unknown}},
         {{{"Present", text("true")}}, {"invalid argument: stoi", unknown}},
         {{{"Present", property("u", 2147483648)}},
          {"out of range: stoi", unknown}}});
}

TEST(MemoryModules, HaveTheWordsOfEnumerations)
{
    expectVariants<getMemoryTableInfo>(
        "/dimm3", item + "Dimm",
        {{"MemoryType", text("")},
         {"FormFactor", text("RDIMM")},
         {"ECC", text("a.")},
         {"MaxMemorySpeedInMhz", property("q", 65535)},
         {"MemorySizeInKB", property("t", 2147483647)},
         {"MemoryDataWidth", property("q", 64)},
         {"Present", property("b", false)}},
        {{{},
          {"0", "0|dimm3|null|null|null|Unknown|Unknown|null|null||65535|"
                "2147483647|64|0|0|0"}},
         {{{"ECC", nullptr}},
          {nullText, "0|dimm3|null|null|null|Unknown|Unknown|null|null|null|0|"
                     "0|0|0|0|0"}}});
}

TEST(Processors, AreNamedByTheirLocation)
{
    expectVariants<getCpuTableInfo>(
        "/cpu", item + "Cpu",
        {{"LocationCode", text("CPU 1")},
         {"Architecture", text("a.b.Arm")},
         {"CurSpeedInMhz", property("u", 1)},
         {"MaxSpeedInMhz", property("u", 2)},
         {"CoreCount", property("q", 3)},
         {"ThreadCount", property("q", 4)},
         {"L1CacheKiB", property("u", 5)},
         {"L2CacheKiB", text("big")}},
        {{{},
          {"invalid argument: stoi",
           "0|CPUCPU 1|null|null|null|null|a.b.Arm|1|2|3|4|5|5|0|0|0|0|0"}},
         {{{"LocationCode", nullptr}},
          {nullText,
           "0|null|null|null|null|null|null|0|0|0|0|0|0|0|0|0|0|0"}}});
}

} // namespace morvath::tests::inventory
