// SPDX-License-Identifier: Apache-2.0
#include "accessors/inventory.hpp"
#include "accessors/smbios.hpp"
#include "morvath.h"

using namespace morvath;

namespace
{

constexpr Property systemProperty(const char* name)
{
    return smbiosProperty("xyz.openbmc_project.Inventory.Item.System", name);
}

constexpr auto manufacturer = systemProperty("Manufacturer");
constexpr auto model = systemProperty("Model");
constexpr auto serialNumber = systemProperty("SerialNumber");
constexpr auto uuid = systemProperty("UUID");
constexpr auto assetTag = smbiosProperty(assetTagInterface, "AssetTag");
constexpr auto hostName = systemProperty("HostName");
constexpr auto configurationModel = systemProperty("ConfModel");

// Deliberately the maker of the system: no other is published for the BIOS.
constexpr auto biosVendor = manufacturer;
constexpr auto biosBuildDate = systemProperty("Date");
constexpr auto cpldVersion = smbiosProperty(biosConfiguration, "CpldVersion");

} // namespace

int32_t getSystemManufacturer(char** value)
{
    return readText(manufacturer, value);
}

int32_t getSystemModel(char** value)
{
    return readText(model, value);
}

int32_t getSystemSerialNumber(char** value)
{
    return readText(serialNumber, value);
}

int32_t getSystemUUID(char** value)
{
    return readText(uuid, value);
}

int32_t getSystemAssetTag(char** value)
{
    return readText(assetTag, value);
}

int32_t getSystemHostName(char** value)
{
    return readText(hostName, value);
}

int32_t getSystemConfModel(char** value)
{
    return readText(configurationModel, value);
}

int32_t setSystemAssetTag(const char* value)
{
    return writeText(assetTag, value);
}

int32_t setSystemHostName(const char* value)
{
    return writeText(hostName, value);
}

int32_t setSystemConfModel(const char* value)
{
    return writeText(configurationModel, value);
}

int32_t getBiosVendor(char** value)
{
    return readText(biosVendor, value);
}

int32_t getBiosBuildDate(char** value)
{
    return readText(biosBuildDate, value);
}

int32_t getCpldFirmwareVersion(char** value)
{
    return readText(cpldVersion, value);
}
