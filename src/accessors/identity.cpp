// SPDX-License-Identifier: Apache-2.0
#include "base/texts.hpp"
#include "bus/mapper.hpp"
#include "bus/properties.hpp"
#include "bus/rows.hpp"
#include "morvath.h"

#include <systemd/sd-id128.h>

#include <array>
#include <cstdio>
#include <string_view>

using namespace morvath;

namespace
{

/** Of the object that carries the facts of the system and of its BIOS. */
constexpr Property smbiosProperty(const char* interface, const char* name)
{
    return {"xyz.openbmc_project.Smbios.MDR_V2",
            "/xyz/openbmc_project/inventory/system/chassis/motherboard/bios",
            interface, name};
}

constexpr auto biosConfiguration = "xyz.openbmc_project.BIOSConfig.BiosConf";

constexpr auto inventory = "xyz.openbmc_project.Inventory.Manager";
constexpr auto bmcRoot =
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

using Read = int32_t (*)(const Property&, uint8_t*);

int32_t readChoice(Read read, const char* name, uint32_t* value)
{
    uint8_t byte = 0;
    const auto code = read(smbiosProperty(biosConfiguration, name), &byte);
    // Stored whatever the code, on purpose: a failure leaves 0 behind.
    *value = byte;
    return code;
}

// Must never change: the identifier of every device in the field hangs on it.
constexpr sd_id128_t application = SD_ID128_ARRAY(
    3c, 9a, 51, f2, 7b, 0e, 4d, 68, 9e, 27, b1, 4f, 0a, 6c, 5d, 83);

constexpr auto uuidFormat = "%02x%02x%02x%02x-%02x%02x-%02x%02x-%02x%02x-"
                            "%02x%02x%02x%02x%02x%02x";

constexpr auto bmcPurpose =
    "xyz.openbmc_project.Software.Version.VersionPurpose.BMC";
constexpr auto hostPurpose =
    "xyz.openbmc_project.Software.Version.VersionPurpose.Host";

constexpr std::size_t purposeColumn = 0;
constexpr std::size_t versionColumn = 1;
constexpr std::array imageColumns{"Purpose", "Version"};

constexpr TableQuery images{"/xyz/openbmc_project/software",
                            "xyz.openbmc_project.Software.Version",
                            imageColumns};

/** Of its first characters only, so longer purposes are the same. */
bool isFor(Row image, std::string_view purpose)
{
    const char* held = image[purposeColumn];
    return held && std::string_view(held).starts_with(purpose);
}

int32_t readVersion(const char* purpose, char** value)
{
    Rows rows;
    if (const auto code = rows.read(images))
    {
        return code;
    }
    // Of several images the last counts, on purpose.
    CText version;
    for (std::size_t index = 0; index < rows.size(); ++index)
    {
        auto image = rows[index];
        if (isFor(image, purpose) && image[versionColumn])
        {
            version = image.take(versionColumn);
        }
    }
    if (version)
    {
        *value = version.release();
    }
    return success;
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
// clang-format on

int32_t getBMCProperty(const char* property, char** value)
{
    required(property);
    ObjectList controllers;
    if (const auto code = controllers.query(bmcRoot, bmcInterface))
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

#define VERSION(function, purpose) \
    int32_t function(char** value) { return readVersion(purpose, value); }
#define CHOICE(function, read, name) \
    int32_t function(uint32_t* value) { return readChoice(read, name, value); }

VERSION(getBMCFirmwareVersion, bmcPurpose)
VERSION(getBiosFirmwareVersion, hostPurpose)
CHOICE(getBiosBootType, readByte, "BootType")
CHOICE(getBiosIPV4Support, readFlag, "IPv4PXESupport")
CHOICE(getBiosIPV6Support, readFlag, "IPv6PXESupport")
CHOICE(getBiosBootOrder0, readByte, "BootTypeOrder0")
CHOICE(getBiosBootOrder1, readByte, "BootTypeOrder1")
CHOICE(getBiosBootOrder2, readByte, "BootTypeOrder2")
CHOICE(getBiosBootOrder3, readByte, "BootTypeOrder3")
CHOICE(getBiosHyperThreading, readFlag, "ProcessorHyperThreading")
// clang-format on

int32_t getBMCDeviceUUID(char** uuid)
{
    sd_id128_t identifier;
    std::array<char, sizeof("00000000-0000-0000-0000-000000000000")> text{};
    // Without a machine identifier the text stays empty and the code is still
    // 0, on purpose.
    if (sd_id128_get_machine_app_specific(application, &identifier) >= 0)
    {
        std::snprintf(text.data(), text.size(), uuidFormat,
                      SD_ID128_FORMAT_VAL(identifier));
    }
    *uuid = newText(text.data()).release();
    return success;
}
