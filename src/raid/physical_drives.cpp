// SPDX-License-Identifier: Apache-2.0
#include "raid/physical_drives.hpp"

namespace morvath
{
namespace
{

int collectBehind(uint32_t raidId, std::vector<vontel::PhyDevInfo_T>& drives)
{
    std::vector<uint16_t> deviceIds;
    if (const int failure =
            vontel::getPhyDevIdList(selector, raidId, deviceIds))
    {
        return failure;
    }
    for (const auto deviceId : deviceIds)
    {
        vontel::PhyDevInfo_T drive{};
        if (const int failure =
                vontel::getPhyDevInfoById(selector, raidId, deviceId, &drive))
        {
            return failure;
        }
        drives.push_back(drive);
    }
    return 0;
}

} // namespace

int collectRaidPhysicalDrives(std::vector<vontel::PhyDevInfo_T>& drives)
{
    if (vontel::checkRaidMgrExist() == 0)
    {
        return 0;
    }
    std::vector<uint32_t> raidIds;
    if (const int failure = vontel::getRaidIdList(selector, raidIds))
    {
        return failure;
    }
    for (const auto raidId : raidIds)
    {
        if (const int failure = collectBehind(raidId, drives))
        {
            return failure;
        }
    }
    return 0;
}

} // namespace morvath
