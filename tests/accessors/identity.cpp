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

struct FixedGetter
{
    int32_t (*get)(char**);
    const char* service;
    const char* object;
    const char* interface;
    const char* property;
    const char* value;
};

const FixedGetter fixedGetters[]{
    {getSystemManufacturer, smbios, "bios", "Inventory.Item.System",
     "Manufacturer", "Velmora Systems"},
    {getSystemModel, smbios, "bios", "Inventory.Item.System", "Model",
     "VS2-2288"},
    {getSystemSerialNumber, smbios, "bios", "Inventory.Item.System",
     "SerialNumber", "VSN26A0417"},
    {getSystemUUID, smbios, "bios", "Inventory.Item.System", "UUID",
     "7d1f0c52-8b3e-4f6a-9c27-15e8a4d2b6f0"},
    {getSystemAssetTag, smbios, "bios", "Inventory.Decorator.AssetTag",
     "AssetTag", "AT-004512"},
    {getSystemHostName, smbios, "bios", "Inventory.Item.System", "HostName",
     "rack7-node12"},
    {getSystemConfModel, smbios, "bios", "Inventory.Item.System", "ConfModel",
     "balanced"},
    {getBiosVendor, smbios, "bios", "Inventory.Item.System", "Manufacturer",
     "Velmora Systems"},
    {getBiosBuildDate, smbios, "bios", "Inventory.Item.System", "Date",
     "03/14/2026"},
    {getCpldFirmwareVersion, smbios, "bios", "BIOSConfig.BiosConf",
     "CpldVersion", "1.07"},
    {getProductAssetTag, inventory, "product", "Inventory.Decorator.AssetTag",
     "AssetTag", "DC4-R07-U12"},
    {getProductManufacturer, inventory, "product", "Inventory.Decorator.Asset",
     "Manufacturer", "Velmora Systems"},
    {getProductPartNum, inventory, "product", "Inventory.Decorator.Asset",
     "PartNumber", "VS2-2288-B01"},
    {getProductPrettyName, inventory, "product", "Inventory.Item", "PrettyName",
     "VS2-2288 two-socket server"},
    {getProductSerialNum, inventory, "product", "Inventory.Decorator.Asset",
     "SerialNumber", "VSN26A0417"},
    {getProductVersion, inventory, "product", "Inventory.Decorator.Revision",
     "Version", "02"},
    {getChassisPartNum, inventory, "chassis", "Inventory.Decorator.Asset",
     "ChassisPartNumber", "VSC-2U-25B"},
    {getChassisPrettyName, inventory, "chassis", "Inventory.Item", "PrettyName",
     "2U chassis, 25 bays"},
    {getChassisSerialNum, inventory, "chassis", "Inventory.Decorator.Asset",
     "ChassisSerialNumber", "CHS9930412"},
    {getBoardBuildDate, inventory, "board", "Inventory.Decorator.Asset",
     "BoardManufactureDate", "2026-01-19 - 07:42:00 UTC"},
    {getBoardManufacturer, inventory, "board", "Inventory.Decorator.Asset",
     "BoardManufacturer", "Velmora Systems"},
    {getBoardPartNum, inventory, "board", "Inventory.Decorator.Asset",
     "BoardPartNumber", "VSB-4410-03"},
    {getBoardPrettyName, inventory, "board", "Inventory.Item", "BoardName",
     "VSB-4410"},
    {getBoardSerialNum, inventory, "board", "Inventory.Decorator.Asset",
     "BoardSerialNumber", "MBQ60221873"},
};

TEST(Identity, ReadsOnePropertyEach)
{
    sim::Platform platform(sim::Scenario::standard());
    for (const auto& fixed : fixedGetters)
    {
        platform.clearCalls();
        EXPECT_EQ(readText(fixed.get), (TextResult{0, fixed.value}));
        const auto calls = platform.calls();
        ASSERT_EQ(calls.size(), 1u) << fixed.property;
        EXPECT_EQ(calls[0].service, fixed.service) << fixed.property;
        EXPECT_EQ(calls[0].path, board + '/' + fixed.object);
        EXPECT_EQ(calls[0].member, "Get");
        EXPECT_EQ(calls[0].arguments,
                  Json({prefix + fixed.interface, fixed.property}));
    }
}

TEST(Identity, LeavesTheOutputAloneWithoutAText)
{
    for (const auto& fixed : fixedGetters)
    {
        EXPECT_EQ(readText(fixed.get), (TextResult{-1, nothing}));
    }
    const auto system = [](const Json& model) {
        return Machine().owns(
            board + "/bios", smbios,
            {{prefix + "Inventory.Item.System", {{"Model", model}}}});
    };
    for (const auto& text : {std::string(), std::string(200, 'x')})
    {
        sim::Platform platform(system(property("s", text)).scenario());
        EXPECT_EQ(readText(getSystemModel), (TextResult{0, nothing}));
    }
    sim::Platform platform(system(property("u", 1)).scenario());
    EXPECT_THROW(readText(getSystemModel), std::bad_variant_access);
}

TEST(Identity, WritesThreeFacts)
{
    struct
    {
        int32_t (*set)(const char*);
        const char* interface;
        const char* property;
    } const cases[]{
        {setSystemAssetTag, "Inventory.Decorator.AssetTag", "AssetTag"},
        {setSystemHostName, "Inventory.Item.System", "HostName"},
        {setSystemConfModel, "Inventory.Item.System", "ConfModel"},
    };
    for (const auto& one : cases)
    {
        sim::Platform platform(sim::Scenario::standard());
        EXPECT_EQ(one.set("new"), 0);
        ASSERT_EQ(platform.calls().size(), 1u);
        EXPECT_EQ(platform.calls()[0].arguments,
                  Json({prefix + one.interface, one.property, text("new")}));
        EXPECT_EQ(platform.property(smbios, board + "/bios",
                                    prefix + one.interface, one.property),
                  "new");
        EXPECT_THROW(one.set(nullptr), std::logic_error);
    }
    EXPECT_EQ(setSystemHostName("nobody there"), -1);
}

TEST(BmcInventory, IsThatOfTheServer)
{
    sim::Platform platform(sim::Scenario::standard());
    EXPECT_EQ(readText(getBMCManufacturer), (TextResult{0, "Kelvane Micro"}));
    EXPECT_EQ(readText(getBMCModel), (TextResult{0, "KM2600"}));
    EXPECT_EQ(readText(getBMCSerialNumber), (TextResult{0, "BM0071F3A9"}));
    EXPECT_EQ(readText(getBMCPartNumber), (TextResult{0, "KM-BMC-26"}));
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
