// SPDX-License-Identifier: Apache-2.0
#include "support/records.hpp"

#include <functional>
#include <type_traits>

namespace morvath::tests::cpp_interface
{

static_assert(!std::is_copy_constructible_v<Records<PsuInfoEntry>>);
static_assert(std::is_nothrow_move_constructible_v<Records<PsuInfoEntry>>);
static_assert(std::is_nothrow_move_assignable_v<Records<PsuInfoEntry>>);

TEST(CppInterface, ReadsAndWrites)
{
    constexpr auto network = "xyz.openbmc_project.Network";
    constexpr auto eth0 = "/xyz/openbmc_project/network/eth0";
    constexpr auto port = "xyz.openbmc_project.Network.EthernetInterface";
    const sim::Platform platform(sim::Scenario::standard());
    EXPECT_EQ(read(getCommonSensorTableInfo, "/xyz/openbmc_project/sensors",
                   "xyz.openbmc_project.Sensor.Value")
                  .size(),
              63u);
    EXPECT_EQ(read(getBMCProperty, "Model"), "KM2600");
    EXPECT_EQ(
        read(getDbusPropertyVectorString, network, eth0, port, "NTPServers"),
        (Lines{"10.20.30.5", "10.20.30.6"}));
    EXPECT_EQ(read(getBiosBootOrder3), 255u);
    EXPECT_EQ(read(getDbusPropertyBool, network, eth0, port, "NICEnabled"), 1);
    EXPECT_EQ(read(_getDbusProperty, network, eth0, port, "InterfaceName"),
              PropertyValue("eth0"));

    EXPECT_EQ(read(getSystemAssetTag), "AT-004512");
    write(setSystemAssetTag, "");
    EXPECT_EQ(read(getSystemAssetTag), std::nullopt);
}

TEST(CppInterface, HandsItsRecordsOn)
{
    const sim::Platform platform(sim::Scenario::standard());
    auto supplies = read(getPsuTableInfo);
    const auto* first = supplies.data();
    auto taken = std::move(supplies);
    EXPECT_TRUE(supplies.empty());
    EXPECT_EQ(taken.data(), first);
    taken = read(getPsuTableInfo);
    EXPECT_EQ(taken.end() - taken.begin(), 2);
    EXPECT_STREQ(taken[1].name, "powersupply1");
    taken = {};
    EXPECT_EQ(taken.begin(), taken.end());
}

TEST(CppInterface, RaisesCodesWithTheNameOfTheFunction)
{
    struct
    {
        std::function<void()> call;
        std::string function;
        int32_t code;
        std::string meaning;
    } const cases[]{
        {[] { read(getPwmTableInfo); }, "getPwmTableInfo", -1,
         "the call on the bus failed"},
        {[] { read(getBMCProperty, "Model"); }, "getBMCProperty", -1,
         "the call on the bus failed"},
        {[] { read(getBiosBootOrder2); }, "getBiosBootOrder2", -1,
         "the call on the bus failed"},
        {[] { write(setNtpServerIP, "name"); }, "setNtpServerIP", -3,
         "the argument was refused"},
    };
    for (const auto& [call, function, code, meaning] : cases)
    {
        try
        {
            call();
            ADD_FAILURE() << function;
        }
        catch (const Error& error)
        {
            EXPECT_EQ(error.function(), function);
            EXPECT_EQ(error.code(), code);
            EXPECT_EQ(error.what(), function + ": " + meaning);
        }
    }
}

TEST(CppInterface, ForgetsWhatAFailureLeaves)
{
    PsuInfoEntry released{};
    Records<PsuInfoEntry> records;
    EXPECT_EQ(records.fill([&](PsuInfoEntry** array, int32_t* count) {
        *array = &released;
        *count = 1;
        return -4;
    }),
              -4);
    EXPECT_TRUE(records.empty());
}

} // namespace morvath::tests::cpp_interface
