// SPDX-License-Identifier: Apache-2.0
#include "accessors/smbios.hpp"
#include "base/required.hpp"
#include "bus/mapper.hpp"
#include "morvath.h"

using namespace morvath;

namespace
{

constexpr auto inventory = "xyz.openbmc_project.Inventory.Manager";
constexpr auto motherboard =
    "/xyz/openbmc_project/inventory/system/chassis/motherboard/";
constexpr auto bmcInterface = "xyz.openbmc_project.Inventory.Item.Bmc";

constexpr auto product =
    "/xyz/openbmc_project/inventory/system/chassis/motherboard/product";
constexpr auto chassis =
    "/xyz/openbmc_project/inventory/system/chassis/motherboard/chassis";
constexpr auto board =
    "/xyz/openbmc_project/inventory/system/chassis/motherboard/board";

constexpr auto item = "xyz.openbmc_project.Inventory.Item";
constexpr auto asset = "xyz.openbmc_project.Inventory.Decorator.Asset";
constexpr auto assetTag = "xyz.openbmc_project.Inventory.Decorator.AssetTag";
constexpr auto revision = "xyz.openbmc_project.Inventory.Decorator.Revision";

constexpr Property systemFact(const char* name)
{
    return smbiosProperty("xyz.openbmc_project.Inventory.Item.System", name);
}

constexpr Property fru(const char* area, const char* interface,
                       const char* name)
{
    return {inventory, area, interface, name};
}

} // namespace

// An export that only binds names is a line.
// clang-format off
#define TEXT(function, property) \
    int32_t function(char** value) { return readText(property, value); }
#define SET_TEXT(function, property) \
    int32_t function(const char* value) { return writeText(property, value); }

TEXT(getSystemManufacturer, systemFact("Manufacturer"))
TEXT(getSystemModel, systemFact("Model"))
TEXT(getSystemSerialNumber, systemFact("SerialNumber"))
TEXT(getSystemUUID, systemFact("UUID"))
TEXT(getSystemAssetTag, smbiosProperty(assetTag, "AssetTag"))
TEXT(getSystemHostName, systemFact("HostName"))
TEXT(getSystemConfModel, systemFact("ConfModel"))
SET_TEXT(setSystemAssetTag, smbiosProperty(assetTag, "AssetTag"))
SET_TEXT(setSystemHostName, systemFact("HostName"))
SET_TEXT(setSystemConfModel, systemFact("ConfModel"))
// Deliberately the maker of the system: no other is published for the BIOS.
TEXT(getBiosVendor, systemFact("Manufacturer"))
TEXT(getBiosBuildDate, systemFact("Date"))
TEXT(getCpldFirmwareVersion, smbiosProperty(biosConfiguration, "CpldVersion"))
TEXT(getProductAssetTag, fru(product, assetTag, "AssetTag"))
TEXT(getProductManufacturer, fru(product, asset, "Manufacturer"))
TEXT(getProductPartNum, fru(product, asset, "PartNumber"))
TEXT(getProductPrettyName, fru(product, item, "PrettyName"))
TEXT(getProductSerialNum, fru(product, asset, "SerialNumber"))
TEXT(getProductVersion, fru(product, revision, "Version"))
TEXT(getChassisPartNum, fru(chassis, asset, "ChassisPartNumber"))
TEXT(getChassisPrettyName, fru(chassis, item, "PrettyName"))
TEXT(getChassisSerialNum, fru(chassis, asset, "ChassisSerialNumber"))
TEXT(getBoardBuildDate, fru(board, asset, "BoardManufactureDate"))
TEXT(getBoardManufacturer, fru(board, asset, "BoardManufacturer"))
TEXT(getBoardPartNum, fru(board, asset, "BoardPartNumber"))
TEXT(getBoardPrettyName, fru(board, item, "BoardName"))
TEXT(getBoardSerialNum, fru(board, asset, "BoardSerialNumber"))

#undef TEXT
#undef SET_TEXT
// clang-format on

int32_t getBMCProperty(const char* property, char** value)
{
    required(property);
    ObjectList controllers;
    if (const auto code = controllers.query(motherboard, bmcInterface))
    {
        return code;
    }
    const char* first = controllers.firstOwnedBy(inventory);
    return first ? readText({inventory, first, asset, property}, value)
                 : success;
}

// clang-format off
#define OF_BMC(function, name) \
    int32_t function(char** value) { return getBMCProperty(name, value); }

OF_BMC(getBMCManufacturer, "Manufacturer")
OF_BMC(getBMCModel, "Model")
OF_BMC(getBMCSerialNumber, "SerialNumber")
OF_BMC(getBMCPartNumber, "PartNumber")
