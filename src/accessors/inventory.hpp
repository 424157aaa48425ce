// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace morvath
{

constexpr auto inventoryService = "xyz.openbmc_project.Inventory.Manager";
constexpr auto assetInterface = "xyz.openbmc_project.Inventory.Decorator.Asset";
constexpr auto assetTagInterface =
    "xyz.openbmc_project.Inventory.Decorator.AssetTag";

} // namespace morvath
