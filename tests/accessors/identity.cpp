// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "support/machine.hpp"
#include "support/result.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace morvath::tests::identity
{

constexpr auto inventory = "xyz.openbmc_project.Inventory.Manager";
const std::string board =
    "/xyz/openbmc_project/inventory/system/chassis/motherboard";
const std::string prefix = "xyz.openbmc_project.";

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
        EXPECT_EQ(*platform.calls().at(0).arguments,
                  Json({prefix + one.interface, one.property, text("new")}));
        EXPECT_EQ(readText(one.get), (TextResult{0, "new"}));
        EXPECT_THROW(one.set(nullptr), std::logic_error);
    }
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
        {"of another service", other, {0, nothing}},
        {"two",
         Machine(other)
             .owns(board + "/c", inventory, controller("second"))
             .owns(board + "/b", inventory, controller("first")),
         {0, "first"}},
    };
    for (const auto& one : cases)
    {
        sim::Platform platform(one.machine.scenario());
        EXPECT_EQ(readText(getBMCModel), one.result) << one.what;
    }
}

} // namespace morvath::tests::identity
