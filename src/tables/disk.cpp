// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "raid/packed_record.hpp"
#include "raid/physical_drives.hpp"
#include "tables/table.hpp"

#include <array>
#include <cstring>
#include <span>
#include <string>
#include <vector>

using namespace morvath;

namespace
{

constexpr auto speedUnit = "GB/s";
constexpr unsigned gibibyteShift = 30;
// Spelt so, with a capital K, since the first release.
constexpr auto noRevision = "UnKnown";

void storeGibibytes(uint32_t& field, CText&& cell)
{
    field = static_cast<uint32_t>(std::stoull(cell.get()) >> gibibyteShift);
}

void storeSpeed(char*& field, CText&& cell)
{
    field = copyText((std::string(cell.get()) + speedUnit).c_str()).release();
}

constexpr std::array columns{
    column<&HddInfoEntry::name>("Name"),
    column<&HddInfoEntry::manufacturer>("Manufacturer"),
    column<&HddInfoEntry::model>("Model"),
    column<&HddInfoEntry::serialNumber>("SerialNumber"),
    column<&HddInfoEntry::mediaType>("MediaType"),
    column<&HddInfoEntry::protocol>("Protocol"),
    column<&HddInfoEntry::revision>("Revision"),
    column<&HddInfoEntry::diskUsage>("DiskUsage"),
    column<&HddInfoEntry::diskTemp>("DiskTemp"),
    column<&HddInfoEntry::capacityGiB, storeGibibytes>("Capacity"),
    column<&HddInfoEntry::capableSpeed, storeSpeed>("CapableSpeedGbs"),
    column<&HddInfoEntry::present>("Present"),
};

constexpr Table busDisks{
    "/",
    "xyz.openbmc_project.Inventory.Item.Disk",
    columns,
};

using RaidDrives = std::vector<vontel::PhyDevInfo_T>;

/** None at all, not even those before it, when one cannot be read. */
RaidDrives readRaidDrives()
{
    RaidDrives drives;
    if (collectRaidPhysicalDrives(drives) != 0)
    {
        drives.clear();
    }
    return drives;
}

/** As isspace() has it in the C locale, whatever the locale is. */
bool isWhiteSpace(char character)
{
    return character != '\0' && std::strchr(" \t\n\v\f\r", character);
}

/** Blank-padded areas; blanks inside are dropped as well. */
std::string withoutWhiteSpace(std::string text)
{
    std::erase_if(text, isWhiteSpace);
    return text;
}

uint32_t gibibytesOf(const PackedRecord& drive)
{
    // Modulo 2^64, and of the result the low 32 bits.
    const auto bytes = drive.number<uint64_t>(physical_drive::blocks) *
                       drive.number<uint32_t>(physical_drive::blockSize);
    return static_cast<uint32_t>(bytes >> gibibyteShift);
}

char* textOf(const std::string& text)
{
    return copyText(text.c_str()).release();
}

void fillRaidDrive(HddInfoEntry& entry, const PackedRecord& drive)
{
    namespace at = physical_drive;
    const auto vendor =
        withoutWhiteSpace(drive.characters(at::vendor, at::vendorLength));
    const auto model =
        withoutWhiteSpace(drive.characters(at::model, at::modelLength));
    const auto serial = drive.text(at::serial);

    entry.name = textOf(vendor + '-' + model + '-' + serial);
    entry.manufacturer = textOf(vendor);
    entry.model = textOf(model);
    entry.serialNumber = textOf(serial);
    entry.mediaType =
        textOf(vontel::getDriveMediaType(drive.byte(at::mediaType)));
    entry.protocol =
        textOf(vontel::getDriveInterfaceType(drive.byte(at::interfaceType)));
    entry.revision = textOf(noRevision);
    entry.diskUsage = textOf(std::to_string(drive.byte(at::usage)));
    entry.diskTemp = drive.byte(at::temperature);
    entry.capacityGiB = gibibytesOf(drive);
    entry.capableSpeed =
        textOf(vontel::getDriveSpeed(drive.byte(at::linkSpeed)) + speedUnit);
    entry.present = 1;
}

void fillRaidDrives(const RaidDrives& drives, HddInfoEntry* entry)
{
    for (const auto& drive : drives)
    {
        fillRaidDrive(*entry++, PackedRecord(drive));
    }
}

} // namespace

int32_t getHddTableInfo(HddInfoEntry** outArray, int32_t* outCount)
{
    int32_t rowCount = 0;
    RowSet rows(rowCount);
    if (const auto code = readRows(busDisks, rows))
    {
        return code;
    }
    const auto drives = readRaidDrives();
    const auto count = rowCount + static_cast<int32_t>(drives.size());
    auto* records = static_cast<HddInfoEntry*>(
        allocateRecords(count, sizeof(HddInfoEntry)));
    *outArray = records;
    if (!records && count != 0)
    {
        return outOfMemory;
    }
    try
    {
        fillRecords(busDisks, rows, records, sizeof(HddInfoEntry), rowCount);
        fillRaidDrives(drives, records + rowCount);
    }
    catch (...)
    {
        // The count is not written yet, so the caller could not release them.
        for (auto& record : std::span(records, count))
        {
            freeHddInfoEntry(&record);
        }
        throw;
    }
    *outCount = count;
    return success;
}

void freeHddInfoEntry(HddInfoEntry* one)
{
    releaseFields(one, &HddInfoEntry::name, &HddInfoEntry::manufacturer,
                  &HddInfoEntry::model, &HddInfoEntry::serialNumber,
                  &HddInfoEntry::mediaType, &HddInfoEntry::protocol,
                  &HddInfoEntry::revision, &HddInfoEntry::diskUsage,
                  &HddInfoEntry::capableSpeed);
}
