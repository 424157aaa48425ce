#include "morvath.h"
#include "support/records.hpp"

namespace morvath::tests
{
namespace
{

using Adapters = Records<getNetAdapterTableInfo, free_adapter_entry_content>;

std::string lineOf(const NetAdapterInfoEntry& entry)
{
    const auto& [id, name, maker, model, sub, tech, ports, one, two] = entry;
    return describe(id, name, maker, model, sub, tech, ports, one, two);
}

TEST(NetworkAdapters, AreThoseOfTheServer)
{
    EXPECT_EQ(
        linesOf<Adapters>(sim::Scenario::standard(), lineOf),
        (Lines{"0", "0|nic0|Pellagic Networks|PN-25D|SFP28|Ethernet|2|0|0",
               "0|nic1|Pellagic Networks|PN-100D OCP|QSFP28|Ethernet|2|0|0"}));
}

TEST(NetworkAdapters, FollowTheirProperties)
{
    expectVariants<Adapters>(
        "/xyz/openbmc_project/inventory/system/chassis/motherboard/_6eic_2d1",
        "xyz.openbmc_project.Inventory.Item.NetAdapter",
        {{"Manufacturer", text("Maker")}, {"PortNum", property("y", 4)}},
        lineOf,
        {
            {"name from the path",
             {},
             {"0", "0|nic-1|Maker|null|null|null|4|0|0"}},
            {"empty texts are no missing ones",
             {{"Name", text("")}, {"Model", text("")}},
             {"0", "0||Maker||null|null|4|0|0"}},
            {"no ports",
             {{"PortNum", nullptr}},
             {nullText, "0|nic-1|Maker|null|null|null|0|0|0"}},
            {"ports in words",
             {{"PortNum", text("four")}},
             {"invalid argument: stoi", "0|nic-1|Maker|null|null|null|0|0|0"}},
        });
}

} // namespace
} // namespace morvath::tests
