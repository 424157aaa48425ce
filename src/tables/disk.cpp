// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "raid/library.hpp"
#include "tables/table.hpp"

#include <array>
#include <cstring>
#include <span>
#include <string>

using namespace morvath;
namespace at = vontel::physical_drive;

namespace
{

constexpr auto speedUnit = "GB/s";
constexpr unsigned gibibyteShift = 30;
// Spelt so, with a capital K, on purpose.
constexpr auto noRevision = "UnKnown";

void storeGibibytes(uint32_t& field, CText&& cell)
{
    field = static_cast<uint32_t>(unsignedNumber(cell.get()) >> gibibyteShift);
}

void storeSpeed(char*& field, CText&& cell)
{
    storeText(field, std::string(required(cell.get())) + speedUnit);
}

constexpr std::array diskColumns{
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

constexpr Table busDisks{"/", "xyz.openbmc_project.Inventory.Item.Disk",
                         diskColumns};

/** Blank-padded areas; blanks inside are dropped as well. */
std::string withoutWhiteSpace(std::string_view text)
{
    std::string kept(text);
    // As isspace() has it in the C locale, whatever the locale is.
    std::erase_if(kept, [](char character) {
        return character != '\0' && std::strchr(" \t\n\v\f\r", character);
    });
    return kept;
}

uint32_t gibibytesOf(const PackedRecord& drive)
{
    // Modulo 2^64, and of the result the low 32 bits.
    const auto bytes = drive.number<uint64_t>(at::blocks) *
                       drive.number<uint32_t>(at::blockSize);
    return static_cast<uint32_t>(bytes >> gibibyteShift);
}

void fillRaidDrive(HddInfoEntry& entry, const PackedRecord& drive)
{
    const auto vendor =
        withoutWhiteSpace(drive.characters(at::vendor, at::vendorLength));
    const auto model =
        withoutWhiteSpace(drive.characters(at::model, at::modelLength));
    const auto serial = drive.text(at::serial);

    storeText(entry.name, vendor + '-' + model + '-' + std::string(serial));
    storeText(entry.manufacturer, vendor);
    storeText(entry.model, model);
    storeText(entry.serialNumber, serial);
    storeText(entry.mediaType,
              vontel::getDriveMediaType(drive.byte(at::mediaType)));
    storeText(entry.protocol,
              vontel::getDriveInterfaceType(drive.byte(at::interfaceType)));
    storeText(entry.revision, noRevision);
    storeText(entry.diskUsage, std::to_string(drive.byte(at::usage)));
    entry.diskTemp = drive.byte(at::temperature);
    entry.capacityGiB = gibibytesOf(drive);
    storeText(entry.capableSpeed,
              vontel::getDriveSpeed(drive.byte(at::linkSpeed)) + speedUnit);
    entry.present = 1;
}

} // namespace

int32_t getHddTableInfo(HddInfoEntry** outArray, int32_t* outCount)
{
    Rows rows;
    if (const auto code = readRows(busDisks, rows))
    {
        return code;
    }
    PhysicalDrives drives;
    if (!readPhysicalDrives(drives))
    {
        // None at all, not even those before the one that cannot be read.
        drives.clear();
    }
    const auto rowCount = static_cast<int32_t>(rows.size());
    const auto count = rowCount + static_cast<int32_t>(drives.size());
    if (const auto code = newRecords(count, outArray))
    {
        return code;
    }
    auto* records = *outArray;
    try
    {
        fillRecords(busDisks, rows, records, sizeof(HddInfoEntry), rowCount);
        for (auto* record = records + rowCount; const auto& drive : drives)
        {
            fillRaidDrive(*record++, PackedRecord(drive));
        }
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
