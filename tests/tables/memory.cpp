#include "morvath.h"
#include "support/records.hpp"

namespace morvath::tests
{
namespace
{

using Modules = Records<getMemoryTableInfo, freeMemInfoEntry>;

std::string lineOf(const MemInfoEntry& entry)
{
    const auto& [id, name, maker, part, serial, type, form, bank, device, ecc,
                 speed, size, width, present, one, two] = entry;
    return describe(id, name, maker, part, serial, type, form, bank, device,
                    ecc, speed, size, width, present, one, two);
}

TEST(MemoryModules, AreThoseOfTheServer)
{
    const auto lines = linesOf<Modules>(sim::Scenario::standard(), lineOf);
    ASSERT_EQ(lines.size(), 1 + 16u);
    // In the order of the bytes of the paths.
    EXPECT_EQ(lines[3],
              "0|dimm10|Osprune Memory|OM5R64G56-2|6C413A56|DDR5|RDIMM|"
              "P1_Node0_Channel2_Dimm0|CPU1_DIMM_C|MultiBitECC|5600|67108864|"
              "64|1|0|0");
    EXPECT_EQ(std::ranges::count_if(
                  lines, [](auto& line) { return line.ends_with("|0|0|0"); }),
              4);
}

TEST(MemoryModules, FollowTheirProperties)
{
    expectVariants<Modules>(
        "/dimm3", "xyz.openbmc_project.Inventory.Item.Dimm",
        {{"MemoryType", text("a.DeviceType.DDR4")},
         {"FormFactor", text("a.FormFactor.SO_DIMM")},
         {"ECC", text("a.Ecc.NoECC")},
         {"MaxMemorySpeedInMhz", property("q", 65535)},
         {"MemorySizeInKB", property("t", 2147483647)},
         {"MemoryDataWidth", property("q", 64)},
         {"Present", property("b", false)}},
        lineOf,
        {
            {"absent, without texts",
             {},
             {"0", "0|dimm3|null|null|null|DDR4|SO_DIMM|null|null|NoECC|65535|"
                   "2147483647|64|0|0|0"}},
            {"words without a dot, or nothing after it",
             {{"MemoryType", text("")},
              {"FormFactor", text("RDIMM")},
              {"ECC", text("a.")}},
             {"0", "0|dimm3|null|null|null|Unknown|Unknown|null|null||65535|"
                   "2147483647|64|0|0|0"}},
            {"no word",
             {{"ECC", nullptr}},
             {nullText, "0|dimm3|null|null|null|DDR4|SO_DIMM|null|null|null|0|"
                        "0|0|0|0|0"}},
            {"size of 2 TiB",
             {{"MemorySizeInKB", property("t", 2147483648)}},
             {"out of range: stoi",
              "0|dimm3|null|null|null|DDR4|SO_DIMM|null|null|NoECC|65535|0|0|"
              "0|0|0"}},
            {"no width",
             {{"MemoryDataWidth", nullptr}},
             {nullText, "0|dimm3|null|null|null|DDR4|SO_DIMM|null|null|NoECC|"
                        "65535|2147483647|0|0|0|0"}},
        });
}

} // namespace
} // namespace morvath::tests
