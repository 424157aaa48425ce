// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/*
 * The interface of the platform's RAID management library, libvontel.so.0.
 * Its mangled names are fixed by these types.
 *
 * Selectors are always 0. Unless it is said otherwise an int result of 0 means
 * success. The library fills records and lists that the caller owns.
 */
#pragma GCC visibility push(default)

namespace vontel
{

// The records are packed, little-endian and only partly known: they are bytes
// here, and what is known of them stands at the offsets below.

struct RAIDInfo_T
{
    unsigned char bytes[399];
};

struct PhyDevInfo_T
{
    unsigned char bytes[213];
};

struct LogicalDevInfo_T
{
    unsigned char bytes[933];
};

/** 0 when there is no RAID manager; nothing else is to be called then. */
int checkRaidMgrExist();

int getRaidIdList(uint8_t selector, std::vector<uint32_t>& raidIds);
int getRaidInfoById(uint8_t selector, uint32_t raidId, RAIDInfo_T* info);

int getPhyDevIdList(uint8_t selector, uint32_t raidId,
                    std::vector<uint16_t>& deviceIds);
int getPhyDevInfoById(uint8_t selector, uint32_t raidId, uint16_t deviceId,
                      PhyDevInfo_T* info);

int getLogDevIdList(uint8_t selector, uint32_t raidId,
                    std::vector<uint16_t>& logicalIds);
int getLogDevInfoById(uint8_t selector, uint32_t raidId, uint16_t logicalId,
                      LogicalDevInfo_T* info);

/** Unlike the others: 0 when there is no entry for these identifiers. */
int getRaidConf(std::string vendor, std::string device, std::string subVendor,
                std::string subDevice, std::string& first, std::string& second,
                std::string& third, std::string& fourth);

std::string getSupportRaidLevels(uint8_t selector, uint32_t raidId);
std::string getRaidLevelStr(uint8_t level);
std::string getPhyDevStateStr(uint8_t state);
std::string getDriveMediaType(uint8_t mediaType);
std::string getDriveInterfaceType(uint8_t interfaceType);
/** Without its unit. */
std::string getDriveSpeed(uint8_t linkSpeed);

namespace raid_info
{
constexpr std::size_t raidId = 0;
constexpr std::size_t name = 4;
constexpr std::size_t idText1 = 84;
constexpr std::size_t idText2 = 132;
constexpr std::size_t idText3 = 164;
constexpr std::size_t vendorId = 324;
constexpr std::size_t deviceId = 326;
constexpr std::size_t subVendorId = 328;
constexpr std::size_t subDeviceId = 330;
constexpr std::size_t wordProperty = 332;
constexpr std::size_t byteProperty = 335;
} // namespace raid_info

namespace physical_drive
{
constexpr std::size_t raidId = 0;
constexpr std::size_t deviceId = 4;
constexpr std::size_t mediaType = 6;
constexpr std::size_t state = 7;
constexpr std::size_t vendor = 8;
constexpr std::size_t vendorLength = 8;
constexpr std::size_t model = 16;
constexpr std::size_t modelLength = 16;
constexpr std::size_t serial = 32;
constexpr std::size_t driveText = 80;
constexpr std::size_t interfaceType = 88;
constexpr std::size_t linkSpeed = 90;
constexpr std::size_t blocks = 91;
constexpr std::size_t blockSize = 99;
constexpr std::size_t temperature = 105;
constexpr std::size_t usage = 118;
} // namespace physical_drive

namespace logical_drive
{
constexpr std::size_t raidLevel = 72;
constexpr std::size_t memberCount = 95;
constexpr std::size_t members = 96;
constexpr std::size_t memberSize = 3;
} // namespace logical_drive

} // namespace vontel

#pragma GCC visibility pop
