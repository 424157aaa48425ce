// SPDX-License-Identifier: Apache-2.0
#include "support/records.hpp"

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
    EXPECT_EQ(read(getDbusPropertyBool, network, eth0, port, "NICEnabled"), 1);
    EXPECT_EQ(read(_getDbusProperty, network, eth0, port, "InterfaceName"),
              PropertyValue("eth0"));
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
    // What a failure leaves is forgotten.
    PsuInfoEntry released{};
    const auto fail = [&released](PsuInfoEntry** array, int32_t* count) {
        *array = &released;
        *count = 1;
        return -4;
    };
    EXPECT_EQ(taken.fill(fail), -4);
    EXPECT_EQ(taken.begin(), taken.end());
}

std::string errorOf(void (*call)())
{
    try
    {
        call();
        return "none";
    }
    catch (const Error& error)
    {
        return error.function() + (' ' + std::to_string(error.code())) + ' ' +
               error.what();
    }
}

TEST(CppInterface, RaisesCodesWithTheNameOfTheFunction)
{
    EXPECT_EQ(errorOf([] { read(getPwmTableInfo); }),
              "getPwmTableInfo -1 getPwmTableInfo: the call on the bus failed");
    EXPECT_EQ(errorOf([] { write(setNtpServerIP, "name"); }),
              "setNtpServerIP -3 setNtpServerIP: the argument was refused");
}

} // namespace morvath::tests::cpp_interface
