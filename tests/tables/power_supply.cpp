#include "morvath.h"
#include "support/records.hpp"

#include <cstring>

namespace morvath::tests
{
namespace
{

constexpr auto service = "xyz.openbmc_project.Inventory.Manager";
constexpr auto supply = "xyz.openbmc_project.Inventory.Item.PowerSupply";
const std::string root = "/xyz/openbmc_project/inventory/system/powersupply/";

using PowerSupplies = Records<getPsuTableInfo, freePsuInfoEntry>;

void expectZero(const PsuInfoEntry& entry)
{
    const PsuInfoEntry zero{};
    EXPECT_EQ(std::memcmp(&entry, &zero, sizeof(zero)), 0);
}

TEST(PowerSupplies, AreThoseOfTheServer)
{
    sim::Platform platform(sim::Scenario::standard());
    PowerSupplies supplies;
    ASSERT_EQ(supplies.read(), 0);
    ASSERT_EQ(supplies.count, 2);
    const auto& second = supplies.records[1];
    EXPECT_STREQ(supplies.records[0].name, "powersupply0");
    EXPECT_STREQ(supplies.records[0].serialNumber, "TW800A6620071");
    EXPECT_EQ(second.id, 0);
    EXPECT_STREQ(second.name, "powersupply1");
    EXPECT_STREQ(second.manufacturer, "Tarnwick Power");
    EXPECT_STREQ(second.partNumber, "TP-800-PT");
    EXPECT_STREQ(second.serialNumber, "TW800A6620088");
    EXPECT_STREQ(second.rating, "800");
    EXPECT_STREQ(second.firmwareVersion, "1.4.2");
    EXPECT_EQ(second.reserved1, 0);
    EXPECT_EQ(second.reserved2, 0);
    EXPECT_EQ(platform.calls().size(), 3u);
}

TEST(PowerSupplies, HaveNullForWhatIsMissing)
{
    sim::Platform platform(
        Machine()
            .owns(
                root + "psu", service,
                {{supply, {{"Name", text("left")}, {"PartNumber", text("")}}}})
            .scenario());
    PowerSupplies supplies;
    ASSERT_EQ(supplies.read(), 0);
    ASSERT_EQ(supplies.count, 1);
    const auto& entry = supplies.records[0];
    EXPECT_STREQ(entry.name, "left");
    EXPECT_EQ(entry.manufacturer, nullptr);
    EXPECT_STREQ(entry.partNumber, "");
    EXPECT_EQ(entry.serialNumber, nullptr);
    EXPECT_STREQ(entry.rating, "800");
    EXPECT_EQ(entry.firmwareVersion, nullptr);
}

TEST(PowerSupplies, FollowACounterThatWasNotZero)
{
    sim::Platform platform(sim::Scenario::standard());
    {
        PowerSupplies supplies{nullptr, 3};
        ASSERT_EQ(supplies.read(), 0);
        ASSERT_EQ(supplies.count, 5);
        EXPECT_STREQ(supplies.records[1].name, "powersupply1");
        for (auto extra : {2, 3, 4})
        {
            expectZero(supplies.records[extra]);
        }
    }
    {
        PowerSupplies supplies{nullptr, -1};
        ASSERT_EQ(supplies.read(), 0);
        ASSERT_EQ(supplies.count, 1);
        EXPECT_STREQ(supplies.records[0].name, "powersupply0");
    }
    {
        PsuInfoEntry preset{};
        PowerSupplies supplies{&preset, -5};
        EXPECT_EQ(supplies.read(), -2);
        EXPECT_EQ(supplies.records, nullptr);
        EXPECT_EQ(supplies.count, -3);
    }
}

TEST(PowerSupplies, AreAnEmptyArrayWithoutAny)
{
    sim::Platform platform(
        Machine()
            .owns(root + "fan", service, {{"com.example.Fan", Json::object()}})
            .scenario());
    PowerSupplies supplies;
    EXPECT_EQ(supplies.read(), 0);
    EXPECT_EQ(supplies.count, 0);
}

TEST(PowerSupplies, FailWithTheListOrWithAnObject)
{
    {
        // Without anything below it the root itself does not exist.
        sim::Platform platform(
            Machine()
                .owns("/xyz/openbmc_project/inventory/system", service,
                      {{supply, Json::object()}})
                .scenario());
        PowerSupplies supplies;
        EXPECT_EQ(supplies.read(), -1);
        EXPECT_EQ(supplies.records, nullptr);
        EXPECT_EQ(supplies.count, 0);
    }
    {
        sim::Platform platform(
            Machine()
                .owns(root + "a", service, {{supply, Json::object()}})
                .owns(root + "b", service, {{supply, Json::object()}})
                .fault({{"path", root + "b"}}, {{"vanished", true}})
                .scenario());
        PowerSupplies supplies;
        EXPECT_THROW(supplies.read(), sdbusplus::exception::SdBusError);
        EXPECT_EQ(supplies.records, nullptr);
        EXPECT_EQ(supplies.count, 1);
    }
}

} // namespace
} // namespace morvath::tests
