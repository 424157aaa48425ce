// SPDX-License-Identifier: Apache-2.0
#include "morvath.hpp"
#include "support/machine.hpp"

#include <gtest/gtest.h>
#include <systemd/sd-id128.h>

namespace morvath::tests::identity
{

constexpr auto inventory = "xyz.openbmc_project.Inventory.Manager";
const std::string board =
    "/xyz/openbmc_project/inventory/system/chassis/motherboard";
const std::string prefix = "xyz.openbmc_project.";
const std::string purpose = prefix + "Software.Version.VersionPurpose.";

Json controller(const std::string& model)
{
    return {{prefix + "Inventory.Item.Bmc", Json::object()},
            {prefix + "Inventory.Decorator.Asset", {{"Model", text(model)}}}};
}

TEST(BmcInventory, IsTheFirstControllerOfTheInventory)
{
    const auto modelOn = [](const Machine& machine) {
        const sim::Platform platform(machine.scenario());
        return read(getBMCModel);
    };
    auto machine =
        Machine().owns(board + "/a", prefix + "Other", controller("foreign"));
    EXPECT_EQ(modelOn(machine), std::nullopt);
    machine.owns(board + "/c", inventory, controller("second"))
        .owns(board + "/b", inventory, controller("first"));
    EXPECT_EQ(modelOn(machine), "first");
}

Json image(const std::string& kind, const std::string& version)
{
    return {{"Purpose", text(purpose + kind)}, {"Version", text(version)}};
}

TEST(Firmware, IsTheLastOfItsPurpose)
{
    struct
    {
        std::vector<Json> images;
        std::optional<std::string> bmc;
        std::optional<std::string> bios;
    } const cases[]{
        {{image("BMC", "1"), image("BMC", "2"), image("System", "3")}, "2", {}},
        {{image("BMC", "1"), image("BMCx", "")}, "", {}},
        {{image("BMC", "2"),
          {{"Purpose", text(purpose + "BMC")}},
          {{"Version", text("5")}},
          image("Host", "6")},
         "2",
         "6"},
    };
    for (const auto& [images, bmc, bios] : cases)
    {
        Machine machine;
        for (const auto& one : images)
        {
            const auto name = std::to_string(&one - images.data());
            machine.owns("/xyz/openbmc_project/software/" + name,
                         prefix + "Software.BMC.Updater",
                         {{prefix + "Software.Version", one}});
        }
        const sim::Platform platform(machine.scenario());
        EXPECT_EQ(read(getBMCFirmwareVersion), bmc);
        EXPECT_EQ(read(getBiosFirmwareVersion), bios);
    }
}

TEST(Bios, TellsChoicesApart)
{
    // On the server these are the same as others of them.
    const auto machine =
        Machine().owns(board + "/bios", prefix + "Smbios.MDR_V2",
                       {{prefix + "BIOSConfig.BiosConf",
                         {{"BootType", property("y", 7)},
                          {"BootTypeOrder1", property("y", 255)},
                          {"IPv4PXESupport", property("b", false)},
                          {"ProcessorHyperThreading", property("b", true)}}}});
    const sim::Platform platform(machine.scenario());
    EXPECT_EQ(read(getBiosBootType), 7u);
    EXPECT_EQ(read(getBiosBootOrder1), 255u);
    EXPECT_EQ(read(getBiosIPV4Support), 0u);
    EXPECT_EQ(read(getBiosHyperThreading), 1u);
}

TEST(DeviceUuid, IsDerivedFromTheMachine)
{
    const sd_id128_t application = SD_ID128_ARRAY(
        3c, 9a, 51, f2, 7b, 0e, 4d, 68, 9e, 27, b1, 4f, 0a, 6c, 5d, 83);
    sd_id128_t identifier;
    char digits[SD_ID128_STRING_MAX];
    std::string expected;
    // A machine may be without an identifier, as bare containers are.
    if (sd_id128_get_machine_app_specific(application, &identifier) >= 0)
    {
        expected = sd_id128_to_string(identifier, digits);
        for (const auto place : {8, 13, 18, 23})
        {
            expected.insert(place, 1, '-');
        }
    }
    EXPECT_EQ(read(getBMCDeviceUUID), expected);
}

} // namespace morvath::tests::identity
