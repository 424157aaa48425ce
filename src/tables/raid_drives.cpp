// SPDX-License-Identifier: Apache-2.0
#include "base/c_memory.hpp"
#include "morvath.h"
#include "raid/packed_record.hpp"
#include "raid/physical_drives.hpp"
#include "tables/records.hpp"

#include <string>
#include <vector>

using namespace morvath;
namespace logical_drive = vontel::logical_drive;
namespace physical_drive = vontel::physical_drive;
namespace raid_info = vontel::raid_info;

namespace
{

constexpr auto unknown = "-";

struct LogicalDrive
{
    vontel::LogicalDevInfo_T info{};
    std::string level;

    bool hasMember(uint16_t deviceId) const
    {
        const PackedRecord record(info);
        const auto count = record.byte(logical_drive::memberCount);
        for (std::size_t index = 0; index < count; ++index)
        {
            const auto member =
                logical_drive::members + logical_drive::memberSize * index;
            if (record.number<uint16_t>(member) == deviceId)
            {
                return true;
            }
        }
        return false;
    }
};

using LogicalDrives = std::vector<LogicalDrive>;

/**
 * By the device id alone: equal ids on two controllers have the same level. A
 * member of several logical drives has the level of the last.
 */
std::string levelOf(const LogicalDrives& drives, uint16_t deviceId)
{
    std::string level = unknown;
    for (const auto& drive : drives)
    {
        if (drive.hasMember(deviceId))
        {
            level = drive.level;
        }
    }
    return level;
}

/** Whether all logical drives of a controller could be read. */
bool addLogicalDrives(uint32_t raidId, LogicalDrives& drives)
{
    std::vector<uint16_t> logicalIds;
    if (vontel::getLogDevIdList(selector, raidId, logicalIds) != 0)
    {
        return false;
    }
    for (const auto logicalId : logicalIds)
    {
        auto& drive = drives.emplace_back();
        if (vontel::getLogDevInfoById(selector, raidId, logicalId,
                                      &drive.info) != 0)
        {
            return false;
        }
    }
    return true;
}

/** Whether the logical drives of all controllers could be read. */
bool readLogicalDrives(LogicalDrives& drives)
{
    std::vector<uint32_t> raidIds;
    if (vontel::checkRaidMgrExist() == 0)
    {
        return true;
    }
    if (vontel::getRaidIdList(selector, raidIds) != 0)
    {
        return false;
    }
    for (const auto raidId : raidIds)
    {
        if (!addLogicalDrives(raidId, drives))
        {
            return false;
        }
    }
    for (auto& drive : drives)
    {
        drive.level = vontel::getRaidLevelStr(
            PackedRecord(drive.info).byte(logical_drive::raidLevel));
    }
    return true;
}

void fillDrive(RaidHddEntry& entry, const PackedRecord& drive,
               const LogicalDrives& logicalDrives)
{
    std::string raidLevel = unknown;
    std::string state = unknown;
    std::string driveText = unknown;
    std::string controllerName = unknown;

    vontel::RAIDInfo_T controller{};
    const auto raidId = drive.number<uint32_t>(physical_drive::raidId);
    // A controller that cannot be read costs its drives their texts only.
    if (vontel::getRaidInfoById(selector, raidId, &controller) == 0)
    {
        raidLevel = levelOf(logicalDrives,
                            drive.number<uint16_t>(physical_drive::deviceId));
        state = vontel::getPhyDevStateStr(drive.byte(physical_drive::state));
        driveText = drive.text(physical_drive::driveText);
        controllerName = PackedRecord(controller).text(raid_info::name);
    }
    storeText(entry.raidLevel, raidLevel);
    storeText(entry.state, state);
    storeText(entry.driveText, driveText);
    storeText(entry.controllerName, controllerName);
}

} // namespace

int32_t getRaidHddTableInfo(RaidHddEntry** outArray, int32_t* outCount)
{
    if (vontel::checkRaidMgrExist() == 0)
    {
        *outCount = 0;
        return success;
    }
    LogicalDrives logicalDrives;
    std::vector<vontel::PhyDevInfo_T> drives;
    if (!readLogicalDrives(logicalDrives) ||
        collectRaidPhysicalDrives(drives) != 0)
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
