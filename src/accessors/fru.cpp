// SPDX-License-Identifier: Apache-2.0
#include "accessors/inventory.hpp"
#include "bus/properties.hpp"
#include "morvath.h"

using namespace morvath;

namespace
{

constexpr auto itemInterface = "xyz.openbmc_project.Inventory.Item";
constexpr auto revisionInterface =
    "xyz.openbmc_project.Inventory.Decorator.Revision";

constexpr auto product =
    "/xyz/openbmc_project/inventory/system/chassis/motherboard/product";
constexpr auto chassis =
    "/xyz/openbmc_project/inventory/system/chassis/motherboard/chassis";
constexpr auto board =
    "/xyz/openbmc_project/inventory/system/chassis/motherboard/board";

constexpr Property productAssetTag{inventoryService, product, assetTagInterface,
                                   "AssetTag"};
constexpr Property productManufacturer{inventoryService, product,
                                       assetInterface, "Manufacturer"};
constexpr Property productPartNumber{inventoryService, product, assetInterface,
                                     "PartNumber"};
constexpr Property productName{inventoryService, product, itemInterface,
                               "PrettyName"};
constexpr Property productSerialNumber{inventoryService, product,
                                       assetInterface, "SerialNumber"};
constexpr Property productVersion{inventoryService, product, revisionInterface,
                                  "Version"};

constexpr Property chassisPartNumber{inventoryService, chassis, assetInterface,
                                     "ChassisPartNumber"};
constexpr Property chassisName{inventoryService, chassis, itemInterface,
                               "PrettyName"};
constexpr Property chassisSerialNumber{inventoryService, chassis,
                                       assetInterface, "ChassisSerialNumber"};

constexpr Property boardBuildDate{inventoryService, board, assetInterface,
                                  "BoardManufactureDate"};
constexpr Property boardManufacturer{inventoryService, board, assetInterface,
                                     "BoardManufacturer"};
constexpr Property boardPartNumber{inventoryService, board, assetInterface,
                                   "BoardPartNumber"};
constexpr Property boardName{inventoryService, board, itemInterface,
                             "BoardName"};
constexpr Property boardSerialNumber{inventoryService, board, assetInterface,
                                     "BoardSerialNumber"};

} // namespace

int32_t getProductAssetTag(char** value)
{
    return readText(productAssetTag, value);
}

int32_t getProductManufacturer(char** value)
{
    return readText(productManufacturer, value);
}

int32_t getProductPartNum(char** value)
{
    return readText(productPartNumber, value);
}

int32_t getProductPrettyName(char** value)
{
    return readText(productName, value);
}

int32_t getProductSerialNum(char** value)
{
    return readText(productSerialNumber, value);
}

int32_t getProductVersion(char** value)
{
    return readText(productVersion, value);
}

int32_t getChassisPartNum(char** value)
{
    return readText(chassisPartNumber, value);
}

int32_t getChassisPrettyName(char** value)
{
    return readText(chassisName, value);
}

int32_t getChassisSerialNum(char** value)
{
    return readText(chassisSerialNumber, value);
}

int32_t getBoardBuildDate(char** value)
{
    return readText(boardBuildDate, value);
}

int32_t getBoardManufacturer(char** value)
{
    return readText(boardManufacturer, value);
}

int32_t getBoardPartNum(char** value)
{
    return readText(boardPartNumber, value);
}

int32_t getBoardPrettyName(char** value)
{
    return readText(boardName, value);
}

int32_t getBoardSerialNum(char** value)
{
    return readText(boardSerialNumber, value);
}
