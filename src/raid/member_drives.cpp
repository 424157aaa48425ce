// SPDX-License-Identifier: Apache-2.0
#include "bus/c_memory.hpp"
#include "bus/call.hpp"
#include "bus/records.hpp"
#include "morvath.h"
#include "raid/packed_record.hpp"
#include "raid/physical_drives.hpp"
#include "raid/selector.hpp"

#include <map>
#include <string>
#include <vector>

using namespace morvath;

namespace
{

constexpr auto unknown = "-";

/** By the device id alone: equal ids on two controllers share an entry. */
using RaidLevelByDrive = std::map<uint16_t, std::string>;

void addMembers(RaidLevelByDrive& levels, const PackedRecord& logicalDrive)
{
    const auto level =
        vontel::getRaidLevelStr(logicalDrive.byte(logical_drive::raidLevel));
    const auto count = logicalDrive.byte(logical_drive::memberCount);
    for (std::size_t index = 0; index < count; ++index)
    {
        // A member of several logical drives keeps the level of the last.
        levels[logicalDrive.number<uint16_t>(
            logical_drive::members + logical_drive::memberSize * index)] =
            level;
    }
}

using LogicalDrives = std::vector<vontel::LogicalDevInfo_T>;

/** Whether all logical drives of a controller could be read. */
bool readLogicalDrives(uint32_t raidId, LogicalDrives& drives)
{
    std::vector<uint16_t> logicalIds;
    if (vontel::getLogDevIdList(selector, raidId, logicalIds) != 0)
    {
        return false;
    }
    for (const auto logicalId : logicalIds)
    {
        vontel::LogicalDevInfo_T drive{};
        if (vontel::getLogDevInfoById(selector, raidId, logicalId, &drive) != 0)
        {
            return false;
        }
        drives.push_back(drive);
    }
    return true;
}

/** Whether the logical drives of all controllers could be read. */
bool readRaidLevels(RaidLevelByDrive& raidLevelByDrive)
{
    if (vontel::checkRaidMgrExist() == 0)
    {
        return true;
    }
    std::vector<uint32_t> raidIds;
    if (vontel::getRaidIdList(selector, raidIds) != 0)
    {
        return false;
    }
    LogicalDrives drives;
    for (const auto raidId : raidIds)
    {
        if (!readLogicalDrives(raidId, drives))
        {
            return false;
        }
    }
    for (const auto& drive : drives)
    {
        addMembers(raidLevelByDrive, PackedRecord(drive));
    }
    return true;
}

void fillDrive(RaidHddEntry& entry, const PackedRecord& drive,
               const RaidLevelByDrive& raidLevelByDrive)
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
        const auto level = raidLevelByDrive.find(
            drive.number<uint16_t>(physical_drive::deviceId));
        if (level != raidLevelByDrive.end())
        {
            raidLevel = level->second;
        }
        state = vontel::getPhyDevStateStr(drive.byte(physical_drive::state));
        driveText = drive.text(physical_drive::driveText);
        controllerName = PackedRecord(controller).text(raid_info::name);
    }
    entry.raidLevel = copyText(raidLevel.c_str()).release();
    entry.state = copyText(state.c_str()).release();
    entry.driveText = copyText(driveText.c_str()).release();
    entry.controllerName = copyText(controllerName.c_str()).release();
}

} // namespace

int32_t getRaidHddTableInfo(RaidHddEntry** outArray, int32_t* outCount)
{
    if (vontel::checkRaidMgrExist() == 0)
    {
        *outCount = 0;
        return success;
    }
    RaidLevelByDrive raidLevelByDrive;
    std::vector<vontel::PhyDevInfo_T> drives;
    if (!readRaidLevels(raidLevelByDrive) ||
        collectRaidPhysicalDrives(drives) != 0)
    {
        return raidFailure;
    }
    *outCount = static_cast<int32_t>(drives.size());
    *outArray = static_cast<RaidHddEntry*>(
        allocateRecords(*outCount, sizeof(RaidHddEntry)));
    if (!*outArray && *outCount != 0)
    {
        return outOfMemory;
    }
    for (std::size_t index = 0; index < drives.size(); ++index)
    {
        fillDrive((*outArray)[index], PackedRecord(drives[index]),
                  raidLevelByDrive);
    }
    return success;
}

void free_raid_hdd_entry(RaidHddEntry* one)
{
    releaseFields(one, &RaidHddEntry::raidLevel, &RaidHddEntry::state,
                  &RaidHddEntry::driveText, &RaidHddEntry::controllerName);
}
