#include "morvath.h"
#include "support/records.hpp"

namespace morvath::tests
{
namespace
{

using Slots = Records<getPcieTableInfo, freePcieInfoEntry>;

std::string lineOf(const PcieInfoEntry& entry)
{
    const auto& [id, name, maker, place, present, one, two] = entry;
    return describe(id, name, maker, place, present, one, two);
}

TEST(PcieSlots, AreThoseOfTheServer)
{
    const auto lines = linesOf<Slots>(sim::Scenario::standard(), lineOf);
    ASSERT_EQ(lines.size(), 1 + 8u);
    EXPECT_EQ(lines[1], "0|PCIe slot 1|Pellagic Networks|PCIE1|1|0|0");
    EXPECT_EQ(lines[2], "0|PCIe slot 2||PCIE2|0|0|0");
}

TEST(PcieSlots, FollowTheirProperties)
{
    expectVariants<Slots>(
        "/anywhere/slot", "xyz.openbmc_project.Inventory.Item.PCIeSlot",
        {{"PrettyName", text("Slot")},
         {"Manufacturer", text("Maker")},
         {"LocationCode", text("J1")},
         {"Present", property("b", true)}},
        lineOf,
        {
            {"all", {}, {"0", "0|Slot|Maker|J1|1|0|0"}},
            {"texts missing, no name from the path",
             {{"PrettyName", nullptr},
              {"Manufacturer", nullptr},
              {"LocationCode", nullptr}},
             {"0", "0|null|null|null|1|0|0"}},
            {"number with more behind it",
             {{"Present", text(" 12 cards")}},
             {"0", "0|Slot|Maker|J1|12|0|0"}},
            {"no presence",
             {{"Present", nullptr}},
             {nullText, "0|Slot|Maker|J1|0|0|0"}},
            {"presence in words",
             {{"Present", text("true")}},
             {"invalid argument: stoi", "0|Slot|Maker|J1|0|0|0"}},
            {"presence of a type that has no text",
             {{"Present", property("n", 1)}},
             {"invalid argument: stoi", "0|Slot|Maker|J1|0|0|0"}},
            {"presence beyond 32 bits",
             {{"Present", property("x", 2147483648)}},
             {"out of range: stoi", "0|Slot|Maker|J1|0|0|0"}},
        });
}

} // namespace
} // namespace morvath::tests
