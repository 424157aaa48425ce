// SPDX-License-Identifier: Apache-2.0
#include "catalogue.hpp"
#include "record_table.hpp"

#include <morvath.h>

namespace morvath::tools
{
namespace
{

Table disks()
{
    using Entry = HddInfoEntry;
    return recordTable<Entry>(
        "disks", "disks on the bus and behind RAID controllers",
        {getHddTableInfo, freeHddInfoEntry},
        {
            {{"name", "NAME"}, &Entry::name},
            {{"manufacturer", "MANUFACTURER"}, &Entry::manufacturer},
            {{"model", "MODEL"}, &Entry::model},
            {{"serialNumber", "SERIAL NUMBER"}, &Entry::serialNumber},
            {{"mediaType", "MEDIA"}, &Entry::mediaType},
            {{"protocol", "PROTOCOL"}, &Entry::protocol},
            {{"revision", "REVISION"}, &Entry::revision},
            {{"usage", "USAGE"}, &Entry::diskUsage},
            {{"speed", "SPEED"}, &Entry::capableSpeed},
            {{"temperatureCelsius", "TEMP [C]"}, &Entry::diskTemp},
            {{"capacityGiB", "CAPACITY [GiB]"}, &Entry::capacityGiB},
            {{"present", "PRESENT"}, &Entry::present, yesOrNo},
        });
}

Table controllers()
{
    using Entry = RaidControllerEntry;
    return recordTable<Entry>(
        "raid-controllers", "RAID controllers",
        {getRaidControllerInfo, freeRaidControllerEntry},
        {
            {{"name", "NAME"}, &Entry::name},
            {{"idText1", "ID 1"}, &Entry::idText1},
            {{"idText2", "ID 2"}, &Entry::idText2},
            {{"idText3", "ID 3"}, &Entry::idText3},
            {{"confText1", "CONFIG 1"}, &Entry::confText1},
            {{"confText2", "CONFIG 2"}, &Entry::confText2},
            {{"confText3", "CONFIG 3"}, &Entry::confText3},
            {{"confText4", "CONFIG 4"}, &Entry::confText4},
            {{"vendorId", "VENDOR"}, &Entry::vendorId},
            {{"deviceId", "DEVICE"}, &Entry::deviceId},
            {{"subVendorId", "SUBVENDOR"}, &Entry::subVendorId},
            {{"subDeviceId", "SUBDEVICE"}, &Entry::subDeviceId},
            {{"driveInterfaces", "DRIVES"}, &Entry::driveInterfaces},
            {{"hostInterface", "HOST"}, &Entry::hostInterface},
            {{"byteProperty", "BYTE"}, &Entry::byteProperty},
            {{"wordProperty", "WORD"}, &Entry::wordProperty},
            {{"supportedRaidLevels", "RAID LEVELS"},
             &Entry::supportedRaidLevels},
        });
}

Table drives()
{
    using Entry = RaidHddEntry;
    return recordTable<Entry>(
        "raid-drives", "drives behind RAID controllers, with their RAID level",
        {getRaidHddTableInfo, free_raid_hdd_entry},
        {
            {{"driveText", "DRIVE", Form::dashed}, &Entry::driveText},
            {{"raidLevel", "RAID LEVEL", Form::dashed}, &Entry::raidLevel},
            {{"state", "STATE", Form::dashed}, &Entry::state},
            {{"controllerName", "CONTROLLER", Form::dashed},
             &Entry::controllerName},
        });
}

} // namespace

std::vector<Table> raidTables()
{
    return {disks(), controllers(), drives()};
}

} // namespace morvath::tools
