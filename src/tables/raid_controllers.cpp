// SPDX-License-Identifier: Apache-2.0
#include "base/c_memory.hpp"
#include "morvath.h"
#include "raid/packed_record.hpp"
#include "raid/physical_drives.hpp"
#include "tables/records.hpp"

#include <array>
#include <cstdio>
#include <string>
#include <vector>

using namespace morvath;
namespace raid_info = vontel::raid_info;

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

/** Whether all could be read. */
bool readInfos(const std::vector<uint32_t>& raidIds,
               std::vector<vontel::RAIDInfo_T>& infos)
{
    for (const auto raidId : raidIds)
    {
        vontel::RAIDInfo_T info{};
        if (vontel::getRaidInfoById(selector, raidId, &info) != 0)
        {
            return false;
        }
        infos.push_back(info);
    }
    return true;
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
    if (!readInfos(raidIds, infos))
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
