// SPDX-License-Identifier: Apache-2.0
#include "support/machine.hpp"

#include <gtest/gtest.h>
#include <morvath.hpp>

#include <algorithm>
#include <functional>
#include <type_traits>

namespace morvath::tests::cpp_interface
{

constexpr auto network = "xyz.openbmc_project.Network";
constexpr auto eth0 = "/xyz/openbmc_project/network/eth0";
constexpr auto ethernet = "xyz.openbmc_project.Network.EthernetInterface";
constexpr auto bios =
    "/xyz/openbmc_project/inventory/system/chassis/motherboard/bios";

static_assert(!std::is_copy_constructible_v<Records<PsuInfoEntry>>);
static_assert(std::is_nothrow_move_constructible_v<Records<PsuInfoEntry>>);
static_assert(std::is_nothrow_move_assignable_v<Records<PsuInfoEntry>>);

std::string nameOf(const PsuInfoEntry& supply) { return supply.name; }

TEST(CppInterface, ReadsAndWrites)
{
    const sim::Platform platform(Machine::server().scenario());
    std::vector<std::string> names;
    std::ranges::transform(read(getPsuTableInfo), std::back_inserter(names),
                           nameOf);
    EXPECT_EQ(names,
              (std::vector<std::string>{"powersupply0", "powersupply1"}));
    EXPECT_EQ(read(getCommonSensorTableInfo, "/xyz/openbmc_project/sensors",
                   "xyz.openbmc_project.Sensor.Value")
                  .size(),
              63u);
    EXPECT_EQ(read(getBMCProperty, "Model"), "KM2600");
    EXPECT_EQ(read(getDbusPropertyVectorString, network, eth0, ethernet,
                   "NTPServers"),
              (std::vector<std::string>{"10.20.30.5", "10.20.30.6"}));
    EXPECT_EQ(
        read(getDbusInterface, "", "/xyz/openbmc_project/network", ethernet)
            .size(),
        2u);
    EXPECT_EQ(read(getBiosBootOrder3), 255u);
    EXPECT_EQ(read(getDbusPropertyUint8, "xyz.openbmc_project.Smbios.MDR_V2",
                   bios, "xyz.openbmc_project.BIOSConfig.BiosConf", "BootType"),
              1);
    EXPECT_EQ(read(_getDbusProperty, network, eth0, ethernet, "InterfaceName"),
              PropertyValue("eth0"));

    EXPECT_EQ(read(getSystemAssetTag), "AT-004512");
    write(setSystemAssetTag, "");
    EXPECT_EQ(read(getSystemAssetTag), std::nullopt);
}

TEST(CppInterface, HandsItsRecordsOn)
{
    const sim::Platform platform(Machine::server().scenario());
    auto supplies = read(getPsuTableInfo);
    const auto* first = supplies.data();
    auto taken = std::move(supplies);
    EXPECT_TRUE(supplies.empty());
    EXPECT_EQ(taken.data(), first);
    taken = read(getPsuTableInfo);
    EXPECT_STREQ(taken[1].name, "powersupply1");
    taken = {};
    EXPECT_EQ(taken.begin(), taken.end());
}

TEST(CppInterface, RaisesCodesWithTheNameOfTheFunction)
{
    const std::pair<std::function<void()>, const char*> calls[]{
        {[] { read(getPwmTableInfo); },
         "getPwmTableInfo: the call on the bus failed"},
        {[] { read(getBMCProperty, "Model"); },
         "getBMCProperty: the call on the bus failed"},
        {[] { read(getBoardSerialNum); },
         "getBoardSerialNum: the call on the bus failed"},
        {[] { read(getBiosBootOrder2); },
         "getBiosBootOrder2: the call on the bus failed"},
        {[] { write(setSystemHostName, ""); },
         "setSystemHostName: the call on the bus failed"},
        {[] { write(setSystemPowerCtl, 5); },
         "setSystemPowerCtl: the argument was refused"},
        {[] { write(setNtpServerIP, "name"); },
         "setNtpServerIP: the argument was refused"},
    };
    for (const auto& [call, what] : calls)
    {
        try
        {
            call();
            ADD_FAILURE() << what;
        }
        catch (const Error& error)
        {
            EXPECT_STREQ(error.what(), what);
            EXPECT_EQ(what,
                      error.function() + std::string(what).substr(
                                             std::string(what).find(':')));
            EXPECT_EQ(error.code(),
                      std::string(what).ends_with("refused") ? -3 : -1);
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
