// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>

/** Texts that lead into the library, where arbitrary ones would be refused. */
namespace morvath::fuzz
{

constexpr std::array objectPaths{
    "/xyz/openbmc_project/network/eth0",
    "/xyz/openbmc_project/inventory/system/chassis/motherboard/nic0",
    "/a/_41_00_", "/", "/a/_41_00b"};

constexpr std::array services{"xyz.openbmc_project.Inventory.Manager",
                              "xyz.openbmc_project.Smbios.MDR_V2",
                              "xyz.openbmc_project.Network", "", ":1.7"};

constexpr std::array errors{
    "org.freedesktop.DBus.Error.UnknownObject",
    "org.freedesktop.DBus.Error.NoReply", "org.freedesktop.DBus.Error.NoMemory",
    "xyz.openbmc_project.Common.Error.ResourceNotFound"};

/** What the tables ask for. */
// clang-format off
constexpr std::array properties{
    "Name", "Address", "Architecture", "BankLocator", "CapableSpeedGbs",
    "Capacity", "CardName", "CoreCount", "CriticalAlarmHigh",
    "CriticalAlarmLow", "CriticalHigh", "CriticalLow", "CurSpeedInMhz",
    "CurrentPower", "DefaultGateway", "DiskTemp", "DiskUsage", "Drop", "ECC",
    "FanLevel", "FirmwareVersion", "FormFactor", "InterfaceName", "L1CacheKiB",
    "L2CacheKiB", "L3CacheKiB", "LldpEnabled", "LocationCode", "MACAddress",
    "MacAddress", "Manufacturer", "MaxMemorySpeedInMhz", "MaxSpeed",
    "MaxSpeedInMhz", "MaxValue", "MediaType", "MemoryDataWidth",
    "MemoryDeviceLocator", "MemorySizeInKB", "MemoryType", "MinValue", "Model",
    "NICEnabled", "NetworkTech", "Origin", "Packets", "PartNumber", "PhyLink",
    "PortNum", "PortType", "PrefixLength", "Present", "PrettyName", "Protocol",
    "Purpose", "Revision", "RootBDF", "SerialNumber", "SubModel", "Temperature",
    "ThreadCount", "TotalMemory", "Unit", "Value", "Version",
    "WarningAlarmHigh", "WarningAlarmLow", "WarningHigh", "WarningLow",
};
// clang-format on

/** The first is both a number and a text. */
constexpr std::array values{
    "1",
    "",
    "0",
    "-1",
    "2147483648",
    "18446744073709551615",
    "18446744073709551616",
    " 24abc",
    "xyz.openbmc_project.Time.Synchronization.Method.NTP",
    "192.0.2.1",
    "xyz.openbmc_project.Network.IP.AddressOrigin.Static",
    "xyz.openbmc_project.Software.Version.VersionPurpose.BMC",
    "xyz.openbmc_project.Software.Version.VersionPurpose.Host",
    "xyz.openbmc_project.State.Host.HostState.Running",
    "xyz.openbmc_project.State.Host.Transition.Reboot",
    "xyz.openbmc_project.Control.Power.RestorePolicy.Policy.Restore",
    "xyz.openbmc_project.Time.Synchronization.Method.Manual",
    "a."};

/**
 * For parameters. They are short: setLldpEnalbed() ends the process when a
 * path gets too long, as it should.
 */
constexpr std::array arguments{
    "a.b", "/a", "/", "", "Name", "always", "192.0.2.1 192.0.2.2"};

} // namespace morvath::fuzz
