// SPDX-License-Identifier: Apache-2.0
#include "raid/library.hpp"

namespace morvath
{
namespace
{

/** Reads, for each controller, its ids of things and then these. */
template <typename Record, typename List, typename Read>
bool readBehindAll(std::vector<Record>& records, const List& list,
                   const Read& read)
{
    std::vector<uint32_t> raidIds;
    if (!readRaidIds(raidIds))
    {
        return false;
    }
    for (const auto raidId : raidIds)
    {
        std::vector<uint16_t> ids;
        if (list(selector, raidId, ids) != 0 ||
            !readEach(ids, records, [&](uint16_t id, Record* record) {
                return read(selector, raidId, id, record);
            }))
        {
            return false;
        }
    }
    return true;
}

} // namespace

bool readRaidIds(std::vector<uint32_t>& raidIds)
{
    return vontel::checkRaidMgrExist() == 0 ||
           vontel::getRaidIdList(selector, raidIds) == 0;
}

bool readPhysicalDrives(PhysicalDrives& drives)
{
    return readBehindAll(drives, vontel::getPhyDevIdList,
                         vontel::getPhyDevInfoById);
}

bool readLogicalDrives(LogicalDrives& drives)
{
    return readBehindAll(drives, vontel::getLogDevIdList,
                         vontel::getLogDevInfoById);
}

} // namespace morvath
