// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "support/machine.hpp"
#include "support/result.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <variant>

namespace morvath::tests
{
namespace
{

constexpr auto inventory = "xyz.openbmc_project.Inventory.Manager";
constexpr auto smbios = "xyz.openbmc_project.Smbios.MDR_V2";
const std::string board =
    "/xyz/openbmc_project/inventory/system/chassis/motherboard";
const std::string prefix = "xyz.openbmc_project.";

const std::pair<int32_t (*)(char**), const char*> getters[]{
    {getSystemManufacturer, "Velmora Systems"},
    {getSystemModel, "VS2-2288"},
    {getSystemSerialNumber, "VSN26A0417"},
    {getSystemUUID, "7d1f0c52-8b3e-4f6a-9c27-15e8a4d2b6f0"},
    {getSystemAssetTag, "AT-004512"},
    {getSystemHostName, "rack7-node12"},
    {getSystemConfModel, "balanced"},
    {getBiosVendor, "Velmora Systems"},
    {getBiosBuildDate, "03/14/2026"},
    {getCpldFirmwareVersion, "1.07"},
    {getProductAssetTag, "DC4-R07-U12"},
    {getProductManufacturer, "Velmora Systems"},
    {getProductPartNum, "VS2-2288-B01"},
    {getProductPrettyName, "VS2-2288 two-socket server"},
    {getProductSerialNum, "VSN26A0417"},
    {getProductVersion, "02"},
    {getChassisPartNum, "VSC-2U-25B"},
    {getChassisPrettyName, "2U chassis, 25 bays"},
    {getChassisSerialNum, "CHS9930412"},
    {getBoardBuildDate, "2026-01-19 - 07:42:00 UTC"},
    {getBoardManufacturer, "Velmora Systems"},
    {getBoardPartNum, "VSB-4410-03"},
    {getBoardPrettyName, "VSB-4410"},
    {getBoardSerialNum, "MBQ60221873"},
    {getBMCManufacturer, "Kelvane Micro"},
    {getBMCModel, "KM2600"},
    {getBMCSerialNumber, "BM0071F3A9"},
    {getBMCPartNumber, "KM-BMC-26"},
};

TEST(Identity, IsThatOfTheServer)
{
    sim::Platform platform(sim::Scenario::standard());
    for (const auto& [get, value] : getters)
    {
        EXPECT_EQ(readText(get), (TextResult{0, value}));
    }
}

sim::Scenario system(const Json& model)
{
    return Machine()
        .owns(board + "/bios", smbios,
              {{prefix + "Inventory.Item.System", {{"Model", model}}}})
        .scenario();
}

TEST(Identity, LeavesTheOutputAloneWithoutAText)
{
    for (const auto& [get, value] : getters)
    {
        EXPECT_EQ(readText(get), (TextResult{-1, nothing})) << value;
    }
    for (const auto& unfit : {std::string(), std::string(200, 'x')})
    {
        sim::Platform platform(system(text(unfit)));
        EXPECT_EQ(readText(getSystemModel), (TextResult{0, nothing}));
    }
    sim::Platform platform(system(property("u", 1)));
    EXPECT_THROW(readText(getSystemModel), std::bad_variant_access);
}

TEST(Identity, WritesThreeFacts)
{
    struct
    {
        int32_t (*set)(const char*);
        int32_t (*get)(char**);
        std::string interface;
        const char* property;
    } const cases[]{
        {setSystemAssetTag, getSystemAssetTag, "Inventory.Decorator.AssetTag",
         "AssetTag"},
        {setSystemHostName, getSystemHostName, "Inventory.Item.System",
         "HostName"},
        {setSystemConfModel, getSystemConfModel, "Inventory.Item.System",
         "ConfModel"},
    };
    for (const auto& one : cases)
    {
        sim::Platform platform(sim::Scenario::standard());
        EXPECT_EQ(one.set("new"), 0);
        EXPECT_EQ(platform.calls().at(0).arguments,
                  Json({prefix + one.interface, one.property, text("new")}));
        EXPECT_EQ(readText(one.get), (TextResult{0, "new"}));
        EXPECT_THROW(one.set(nullptr), std::logic_error);
    }
    EXPECT_EQ(setSystemHostName("nobody there"), -1);
}

Json controller(const std::string& model)
{
    return {{prefix + "Inventory.Item.Bmc", Json::object()},
            {prefix + "Inventory.Decorator.Asset", {{"Model", text(model)}}}};
}

TEST(BmcInventory, IsTheFirstControllerOfTheInventory)
{
    const auto other =
        Machine().owns(board + "/a", prefix + "Other", controller("foreign"));
    struct
    {
        const char* what;
        Machine machine;
        TextResult result;
    } const cases[]{
        {"no board at all", Machine(), {-1, nothing}},
        {"of another service", other, {0, nothing}},
        {"two",
         Machine(other)
             .owns(board + "/c", inventory, controller("second"))
             .owns(board + "/b", inventory, controller("first")),
         {0, "first"}},
        {"unreadable",
         Machine()
             .owns(board + "/b", inventory, controller("x"))
             .fault({{"path", board + "/b"}}, {{"vanished", true}}),
         {-1, nothing}},
    };
    for (const auto& one : cases)
    {
        sim::Platform platform(one.machine.scenario());
        EXPECT_EQ(readText(getBMCModel), one.result) << one.what;
    }
}

} // namespace
} // namespace morvath::tests
