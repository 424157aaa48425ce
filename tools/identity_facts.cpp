// SPDX-License-Identifier: Apache-2.0
#include "fact_kinds.hpp"
#include "facts.hpp"

#include <morvath.h>

namespace morvath::tools
{
namespace
{

constexpr auto inventory = "xyz.openbmc_project.Inventory.Manager";
constexpr auto item = "xyz.openbmc_project.Inventory.Item";
constexpr auto asset = "xyz.openbmc_project.Inventory.Decorator.Asset";
constexpr auto assetTag = "xyz.openbmc_project.Inventory.Decorator.AssetTag";
constexpr auto revision = "xyz.openbmc_project.Inventory.Decorator.Revision";

constexpr Source ofBios(const char* interface, const char* property)
{
    return {"xyz.openbmc_project.Smbios.MDR_V2",
            "/xyz/openbmc_project/inventory/system/chassis/motherboard/bios",
            interface, property};
}

constexpr Source ofSystem(const char* property)
{
    return ofBios("xyz.openbmc_project.Inventory.Item.System", property);
}

constexpr Source ofProduct(const char* interface, const char* property)
{
    return {inventory,
            "/xyz/openbmc_project/inventory/system/chassis/motherboard/product",
            interface, property};
}

constexpr Source ofChassis(const char* interface, const char* property)
{
    return {inventory,
            "/xyz/openbmc_project/inventory/system/chassis/motherboard/chassis",
            interface, property};
}

constexpr Source ofBoard(const char* interface, const char* property)
{
    return {inventory,
            "/xyz/openbmc_project/inventory/system/chassis/motherboard/board",
            interface, property};
}

constexpr Source ofController(const char* property)
{
    return {inventory, "", "xyz.openbmc_project.Inventory.Item.Bmc", property};
}

constexpr Source image{"", "", "xyz.openbmc_project.Software.Version",
                       "Version"};

constexpr Fact all[]{
    {"system-manufacturer", "maker of the system", ofSystem("Manufacturer"),
     text<getSystemManufacturer>},
    {"system-model", "model of the system", ofSystem("Model"),
     text<getSystemModel>},
    {"system-serial-number", "serial number of the system",
     ofSystem("SerialNumber"), text<getSystemSerialNumber>},
    {"system-uuid", "UUID of the system", ofSystem("UUID"),
     text<getSystemUUID>},
    {"system-asset-tag", "asset tag of the system",
     ofBios(assetTag, "AssetTag"), text<getSystemAssetTag>,
     toText<setSystemAssetTag>, "any text"},
    {"system-host-name", "name of the host", ofSystem("HostName"),
     text<getSystemHostName>, toText<setSystemHostName>, "any text"},
    {"system-configuration", "configuration model of the system",
     ofSystem("ConfModel"), text<getSystemConfModel>,
     toText<setSystemConfModel>, "any text"},
    {"product-manufacturer", "maker of the product",
     ofProduct(asset, "Manufacturer"), text<getProductManufacturer>},
    {"product-name", "name of the product", ofProduct(item, "PrettyName"),
     text<getProductPrettyName>},
    {"product-part-number", "part number of the product",
     ofProduct(asset, "PartNumber"), text<getProductPartNum>},
    {"product-serial-number", "serial number of the product",
     ofProduct(asset, "SerialNumber"), text<getProductSerialNum>},
    {"product-version", "version of the product",
     ofProduct(revision, "Version"), text<getProductVersion>},
    {"product-asset-tag", "asset tag of the product",
     ofProduct(assetTag, "AssetTag"), text<getProductAssetTag>},
    {"chassis-name", "name of the chassis", ofChassis(item, "PrettyName"),
     text<getChassisPrettyName>},
    {"chassis-part-number", "part number of the chassis",
     ofChassis(asset, "ChassisPartNumber"), text<getChassisPartNum>},
    {"chassis-serial-number", "serial number of the chassis",
     ofChassis(asset, "ChassisSerialNumber"), text<getChassisSerialNum>},
    {"board-manufacturer", "maker of the board",
     ofBoard(asset, "BoardManufacturer"), text<getBoardManufacturer>},
    {"board-name", "name of the board", ofBoard(item, "BoardName"),
     text<getBoardPrettyName>},
    {"board-part-number", "part number of the board",
     ofBoard(asset, "BoardPartNumber"), text<getBoardPartNum>},
    {"board-serial-number", "serial number of the board",
     ofBoard(asset, "BoardSerialNumber"), text<getBoardSerialNum>},
    {"board-build-date", "date when the board was made",
     ofBoard(asset, "BoardManufactureDate"), text<getBoardBuildDate>},
    {"bmc-manufacturer", "maker of the management controller",
     ofController("Manufacturer"), text<getBMCManufacturer>},
    {"bmc-model", "model of the management controller", ofController("Model"),
     text<getBMCModel>},
    {"bmc-part-number", "part number of the management controller",
     ofController("PartNumber"), text<getBMCPartNumber>},
    {"bmc-serial-number", "serial number of the management controller",
     ofController("SerialNumber"), text<getBMCSerialNumber>},
    {"bmc-uuid",
     "UUID of the management controller",
     {},
     text<getBMCDeviceUUID>},
    {"bmc-version", "version of the controller's firmware", image,
     text<getBMCFirmwareVersion>},
    {"bios-vendor", "maker of the BIOS", ofSystem("Manufacturer"),
     text<getBiosVendor>},
    {"bios-version", "version of the BIOS", image,
     text<getBiosFirmwareVersion>},
    {"bios-build-date", "date of the BIOS", ofSystem("Date"),
     text<getBiosBuildDate>},
    {"cpld-version", "version of the board's logic",
     ofBios("xyz.openbmc_project.BIOSConfig.BiosConf", "CpldVersion"),
     text<getCpldFirmwareVersion>},
};

} // namespace

std::span<const Fact> identityFacts()
{
    return all;
}

} // namespace morvath::tools
