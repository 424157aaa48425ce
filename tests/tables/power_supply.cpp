// SPDX-License-Identifier: Apache-2.0
#include "support/records.hpp"

namespace morvath::tests::power_supply
{

constexpr auto service = "xyz.openbmc_project.Inventory.Manager";
constexpr auto supply = "xyz.openbmc_project.Inventory.Item.PowerSupply";
const std::string root = "/xyz/openbmc_project/inventory/system/powersupply/";

Machine supplies(const std::vector<Json>& properties)
{
    Machine machine;
    for (std::size_t index = 0; index < properties.size(); ++index)
    {
        machine.owns(root + std::to_string(index), service,
                     {{supply, properties[index]}});
    }
    return machine;
}

TEST(PowerSupplies, AreThoseOfTheServer)
{
    sim::Platform platform(sim::Scenario::standard());
    EXPECT_EQ(linesOf<getPsuTableInfo>(),
              (Lines{"0",
                     "0|powersupply0|Tarnwick Power|TP-800-PT|TW800A6620071|"
                     "800|1.4.2|0|0",
                     "0|powersupply1|Tarnwick Power|TP-800-PT|TW800A6620088|"
                     "800|1.4.2|0|0"}));
    // One call for the list, and one for each.
    EXPECT_EQ(platform.calls().size(), 3u);
}

TEST(PowerSupplies, HaveNullForWhatIsMissing)
{
    const auto machine =
        supplies({{{"Name", text("left")}, {"PartNumber", text("")}}});
    EXPECT_EQ(linesOf<getPsuTableInfo>(machine),
              (Lines{"0", "0|left|null||null|800|null|0|0"}));
    const auto fan = Machine().owns(root + "fan", service,
                                    {{"com.example.Fan", Json::object()}});
    EXPECT_EQ(linesOf<getPsuTableInfo>(fan), Lines{"0"});
}

TEST(PowerSupplies, AreCountedUpToOneThatCannotBeRead)
{
    const auto dying = Machine::server().fault(
        {{"member", "GetAll"}, {"call", 2}}, {{"die", true}});
    sim::Platform platform(dying.scenario());
    PsuInfoEntry* records = nullptr;
    int32_t count = 0;
    EXPECT_EQ(outcomeOf([&] { return getPsuTableInfo(&records, &count); }),
              "bus-error");
    EXPECT_EQ(records, nullptr);
    EXPECT_EQ(count, 1);
}

TEST(PowerSupplies, FollowACounterThatWasNotZero)
{
    const std::string first = "0|0|null|null|null|800|null|0|0";
    const std::string second = "0|1|null|null|null|800|null|0|0";
    const std::string extra = "0|null|null|null|null|null|null|0|0";
    struct
    {
        int32_t before;
        int32_t after;
        Lines lines;
    } const cases[]{
        {3, 5, {"0", first, second, extra, extra, extra}},
        {-1, 1, {"0", first}},
        {-2, 0, {"0"}},
        {-5, -3, {"-2"}},
    };
    sim::Platform platform(
        supplies({Json::object(), Json::object()}).scenario());
    for (const auto& one : cases)
    {
        PsuInfoEntry preset{};
        PsuInfoEntry* records = &preset;
        int32_t count = one.before;
        Records<PsuInfoEntry> table;
        const auto read = [&](PsuInfoEntry** array, int32_t* counter) {
            const auto code = getPsuTableInfo(&records, &count);
            *array = records;
            *counter = count;
            return code;
        };
        Lines lines{outcomeOf([&] { return table.fill(read); })};
        for (const auto& record : table)
        {
            lines.push_back(lineOf(record));
        }
        EXPECT_EQ(lines, one.lines);
        EXPECT_EQ(count, one.after);
        EXPECT_EQ(records == nullptr, one.after < 0);
    }
}

} // namespace morvath::tests::power_supply
