// SPDX-License-Identifier: Apache-2.0
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
        getHddTableInfo,
        {
            {{"name", "NAME", Form::text, always}, &Entry::name},
            {{"manufacturer", "MANUFACTURER", Form::text, seldom},
             &Entry::manufacturer},
            {{"model", "MODEL", Form::text, seldom}, &Entry::model},
            {{"serialNumber", "SERIAL NUMBER", Form::text, 6},
             &Entry::serialNumber},
            {{"mediaType", "MEDIA"}, &Entry::mediaType},
            {{"protocol", "PROTOCOL"}, &Entry::protocol},
            {{"revision", "REVISION", Form::text, seldom}, &Entry::revision},
            {{"usage", "USED", Form::text, 3, "%"}, &Entry::diskUsage},
            {{"speed", "SPEED", Form::text, seldom}, &Entry::capableSpeed},
            {{"temperatureCelsius", "TEMP", Form::text, 1, "°C"},
             &Entry::diskTemp},
            {{"capacityGiB", "CAPACITY", Form::text, 1, "GiB"},
             &Entry::capacityGiB},
            {{"present", "PRESENT"}, &Entry::present, yesOrNo},
        });
}

Table controllers()
{
    using Entry = RaidControllerEntry;
    auto table = recordTable<Entry>(
        "raid-controllers", "RAID controllers", getRaidControllerInfo,
        {
            {{"name", "Name"}, &Entry::name},
            {{"idText1", "First identity text"}, &Entry::idText1},
            {{"idText2", "Second identity text"}, &Entry::idText2},
            {{"idText3", "Third identity text"}, &Entry::idText3},
            {{"confText1", "First configured text"}, &Entry::confText1},
            {{"confText2", "Second configured text"}, &Entry::confText2},
            {{"confText3", "Third configured text"}, &Entry::confText3},
            {{"confText4", "Fourth configured text"}, &Entry::confText4},
            {{"vendorId", "PCI vendor"}, &Entry::vendorId},
            {{"deviceId", "PCI device"}, &Entry::deviceId},
            {{"subVendorId", "PCI subsystem vendor"}, &Entry::subVendorId},
            {{"subDeviceId", "PCI subsystem"}, &Entry::subDeviceId},
            {{"driveInterfaces", "Interfaces of drives"},
             &Entry::driveInterfaces},
            {{"hostInterface", "Interface of the host"}, &Entry::hostInterface},
            {{"byteProperty", "8-bit figure"}, &Entry::byteProperty},
            {{"wordProperty", "16-bit figure"}, &Entry::wordProperty},
            {{"supportedRaidLevels", "RAID levels"},
             &Entry::supportedRaidLevels},
        });
    table.asBlocks = true;
    return table;
}

Table drives()
{
    using Entry = RaidHddEntry;
    return recordTable<Entry>(
        "raid-drives", "drives behind RAID controllers, with their RAID level",
        getRaidHddTableInfo,
        {
            {{"driveText", "DRIVE", Form::dashed}, &Entry::driveText},
            {{"raidLevel", "RAID LEVEL", Form::dashed}, &Entry::raidLevel},
            {{"state", "STATE", Form::dashed}, &Entry::state},
            {{"controllerName", "CONTROLLER", Form::dashed},
             &Entry::controllerName},
        });
}

} // namespace

std::vector<Table> raidTables() { return {disks(), controllers(), drives()}; }

} // namespace morvath::tools
