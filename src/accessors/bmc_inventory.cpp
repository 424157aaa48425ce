// SPDX-License-Identifier: Apache-2.0
#include "accessors/inventory.hpp"
#include "bus/call.hpp"
#include "bus/mapper.hpp"
#include "bus/properties.hpp"
#include "morvath.h"

using namespace morvath;

namespace
{

constexpr auto root =
    "/xyz/openbmc_project/inventory/system/chassis/motherboard/";
constexpr auto bmcInterface = "xyz.openbmc_project.Inventory.Item.Bmc";

} // namespace

int32_t getBMCProperty(const char* property, char** value)
{
    ObjectList controllers;
    if (const auto code = controllers.query(root, bmcInterface))
    {
        return code;
    }
    const char* first = controllers.firstOwnedBy(inventoryService);
    if (!first)
    {
        return success;
    }
    return readText({inventoryService, first, assetInterface, property}, value);
}

int32_t getBMCManufacturer(char** value)
{
    return getBMCProperty("Manufacturer", value);
}

int32_t getBMCModel(char** value)
{
    return getBMCProperty("Model", value);
}

int32_t getBMCSerialNumber(char** value)
{
    return getBMCProperty("SerialNumber", value);
}

int32_t getBMCPartNumber(char** value)
{
    return getBMCProperty("PartNumber", value);
}
