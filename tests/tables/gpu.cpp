#include "morvath.h"
#include "support/records.hpp"

namespace morvath::tests
{
namespace
{

using Gpus = Records<getGpuInfoEntry, freeGpuInfoEntry>;

std::string lineOf(const GpuInfoEntry& entry)
{
    const auto& [id, card, maker, part, serial, memory, temperature, fan, power,
                 one, two] = entry;
    return describe(id, card, maker, part, serial, memory, temperature, fan,
                    power, one, two);
}

TEST(Gpus, AreThoseOfTheServer)
{
    EXPECT_EQ(linesOf<Gpus>(sim::Scenario::standard(), lineOf),
              (Lines{"0",
                     "0|Umbrafell U48|Umbrafell Graphics|UG-U48-P2|"
                     "UG48K660017|49152|52|38|187|0|0",
                     "0|Umbrafell U48|Umbrafell Graphics|UG-U48-P2|"
                     "UG48K660021|49152|49|36|142|0|0"}));
}

TEST(Gpus, FollowTheirProperties)
{
    expectVariants<Gpus>(
        "/xyz/openbmc_project/inventory/system/chassis/motherboard/gpu",
        "xyz.openbmc_project.Inventory.Item.Gpu",
        {{"Manufacturer", text("Maker")},
         {"SerialNumber", text("")},
         {"TotalMemory", property("u", 8192)},
         {"Temperature", property("d", -3.75)},
         {"FanLevel", property("y", 0)},
         {"CurrentPower", property("u", 2147483647)}},
        lineOf,
        {
            {"texts missing, no name from the path",
             {},
             {"0", "0|null|Maker|null||8192|-3|0|2147483647|0|0"}},
            {"no memory",
             {{"TotalMemory", nullptr}},
             {nullText, "0|null|Maker|null||0|0|0|0|0|0"}},
            {"no reading",
             {{"Temperature", property("d", "nan")}},
             {"invalid argument: stoi", "0|null|Maker|null||8192|0|0|0|0|0"}},
            {"power beyond 31 bits",
             {{"CurrentPower", property("u", 2147483648)}},
             {"out of range: stoi", "0|null|Maker|null||8192|-3|0|0|0|0"}},
        });
}

} // namespace
} // namespace morvath::tests
