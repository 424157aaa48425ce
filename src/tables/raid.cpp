// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "raid/library.hpp"
#include "tables/table.hpp"

#include <array>
#include <cstdio>
#include <string>
#include <vector>

using namespace morvath;
namespace raid_info = vontel::raid_info;
namespace logical_drive = vontel::logical_drive;
namespace physical_drive = vontel::physical_drive;

namespace
{

// The same for every controller, whatever the hardware reports.
constexpr auto driveInterfaces = "SAS, SATA";
constexpr auto hostInterface = "PCIE";
constexpr auto notConfigured = "unknown";

std::string hexadecimal(uint16_t number)
{
    std::array<char, sizeof("0x0000")> text;
    std::snprintf(text.data(), text.size(), "0x%04x", number);
    return text.data();
}

void fillIdentifiers(RaidControllerEntry& entry, const PackedRecord& info)
{
    const std::array identifiers{
        hexadecimal(info.number<uint16_t>(raid_info::vendorId)),
        hexadecimal(info.number<uint16_t>(raid_info::deviceId)),
        hexadecimal(info.number<uint16_t>(raid_info::subVendorId)),
        hexadecimal(info.number<uint16_t>(raid_info::subDeviceId)),
    };
    storeText(entry.vendorId, identifiers[0]);
    storeText(entry.deviceId, identifiers[1]);
    storeText(entry.subVendorId, identifiers[2]);
    storeText(entry.subDeviceId, identifiers[3]);

    std::array<std::string, 4> texts;
    if (vontel::getRaidConf(identifiers[0], identifiers[1], identifiers[2],
                            identifiers[3], texts[0], texts[1], texts[2],
                            texts[3]) == 0)
    {
        texts.fill(notConfigured);
    }
    storeText(entry.confText1, texts[0]);
    storeText(entry.confText2, texts[1]);
    storeText(entry.confText3, texts[2]);
    storeText(entry.confText4, texts[3]);
}

void fillController(RaidControllerEntry& entry, const PackedRecord& info)
{
    storeText(entry.name, info.text(raid_info::name));
    storeText(entry.idText1, info.text(raid_info::idText1));
    storeText(entry.idText3, info.text(raid_info::idText3));
    storeText(entry.idText2, info.text(raid_info::idText2));
    fillIdentifiers(entry, info);
    entry.byteProperty = info.byte(raid_info::byteProperty);
    entry.wordProperty = info.number<uint16_t>(raid_info::wordProperty);
    storeText(entry.driveInterfaces, driveInterfaces);
    storeText(entry.supportedRaidLevels,
              vontel::getSupportRaidLevels(
                  selector, info.number<uint32_t>(raid_info::raidId)));
    storeText(entry.hostInterface, hostInterface);
}

constexpr auto unknown = "-";

bool hasMember(const PackedRecord& drive, uint16_t deviceId)
{
    auto member = logical_drive::members;
    for (auto left = drive.byte(logical_drive::memberCount); left > 0; --left)
    {
        if (drive.number<uint16_t>(member) == deviceId)
        {
            return true;
        }
        member += logical_drive::memberSize;
    }
    return false;
}

/**
 * By the device id alone: equal ids on two controllers have the same level. A
 * member of several logical drives has the level of the last.
 */
std::string levelOf(const LogicalDrives& drives, uint16_t deviceId)
{
    std::string level = unknown;
    for (const auto& info : drives)
    {
        const PackedRecord drive(info);
        if (hasMember(drive, deviceId))
        {
            level =
                vontel::getRaidLevelStr(drive.byte(logical_drive::raidLevel));
        }
    }
    return level;
}

void fillDrive(RaidHddEntry& entry, const PackedRecord& drive,
               const LogicalDrives& logicalDrives)
{
    vontel::RAIDInfo_T controller{};
    const auto raidId = drive.number<uint32_t>(physical_drive::raidId);
    // A controller that cannot be read costs its drives their texts only.
    if (vontel::getRaidInfoById(selector, raidId, &controller) != 0)
    {
        for (auto* field : {&entry.raidLevel, &entry.state, &entry.driveText,
                            &entry.controllerName})
        {
            storeText(*field, unknown);
        }
        return;
    }
    const auto deviceId = drive.number<uint16_t>(physical_drive::deviceId);
    storeText(entry.raidLevel, levelOf(logicalDrives, deviceId));
    storeText(entry.state,
              vontel::getPhyDevStateStr(drive.byte(physical_drive::state)));
    storeText(entry.driveText, drive.text(physical_drive::driveText));
    storeText(entry.controllerName,
              PackedRecord(controller).text(raid_info::name));
}

} // namespace

int32_t getRaidControllerInfo(RaidControllerEntry** outArray, int32_t* outCount)
{
    if (vontel::checkRaidMgrExist() == 0)
    {
        *outCount = 0;
        return success;
    }
    std::vector<uint32_t> raidIds;
    if (vontel::getRaidIdList(selector, raidIds) != 0)
    {
        return raidFailure;
    }
    *outCount = static_cast<int32_t>(raidIds.size());
    if (const auto code = newRecords(*outCount, outArray))
    {
        return code;
    }
    std::vector<vontel::RAIDInfo_T> infos;
    if (!readEach(raidIds, infos, [](auto id, auto* info) {
            return vontel::getRaidInfoById(selector, id, info);
        }))
    {
        // Deliberately neither reset to null nor counted down: with a code
        // other than 0 the outputs mean nothing.
        std::free(*outArray);
        return raidFailure;
    }
    for (std::size_t index = 0; index < infos.size(); ++index)
    {
        fillController((*outArray)[index], PackedRecord(infos[index]));
    }
    return success;
}

void freeRaidControllerEntry(RaidControllerEntry* one)
{
    using Entry = RaidControllerEntry;
    releaseFields(one, &Entry::name, &Entry::idText1, &Entry::confText1,
                  &Entry::confText2, &Entry::confText3, &Entry::confText4,
                  &Entry::idText3, &Entry::idText2, &Entry::vendorId,
                  &Entry::deviceId, &Entry::subVendorId, &Entry::subDeviceId,
                  &Entry::driveInterfaces, &Entry::supportedRaidLevels,
                  &Entry::hostInterface);
}

int32_t getRaidHddTableInfo(RaidHddEntry** outArray, int32_t* outCount)
{
    if (vontel::checkRaidMgrExist() == 0)
    {
        *outCount = 0;
        return success;
    }
    LogicalDrives logicalDrives;
    PhysicalDrives drives;
    if (!readLogicalDrives(logicalDrives) || !readPhysicalDrives(drives))
    {
        return raidFailure;
    }
    *outCount = static_cast<int32_t>(drives.size());
    if (const auto code = newRecords(*outCount, outArray))
    {
        return code;
    }
    for (std::size_t index = 0; index < drives.size(); ++index)
    {
        fillDrive((*outArray)[index], PackedRecord(drives[index]),
                  logicalDrives);
    }
    return success;
}

void free_raid_hdd_entry(RaidHddEntry* one)
{
    releaseFields(one, &RaidHddEntry::raidLevel, &RaidHddEntry::state,
                  &RaidHddEntry::driveText, &RaidHddEntry::controllerName);
}
