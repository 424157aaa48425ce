// SPDX-License-Identifier: Apache-2.0
#include "base/last_part.hpp"
#include "morvath.h"
#include "tables/table.hpp"

#include <array>

using namespace morvath;

namespace
{

/** The short word of an enumeration value. */
void storeWord(char*& field, CText&& cell)
{
    storeText(field, lastPart(required(cell.get()), unknownWord));
}

constexpr std::array columns{
    column<&MemInfoEntry::name>("Name"),
    column<&MemInfoEntry::manufacturer>("Manufacturer"),
    column<&MemInfoEntry::partNumber>("PartNumber"),
    column<&MemInfoEntry::serialNumber>("SerialNumber"),
    column<&MemInfoEntry::memoryType, storeWord>("MemoryType"),
    column<&MemInfoEntry::formFactor, storeWord>("FormFactor"),
    column<&MemInfoEntry::bankLocator>("BankLocator"),
    column<&MemInfoEntry::deviceLocator>("MemoryDeviceLocator"),
    column<&MemInfoEntry::ecc, storeWord>("ECC"),
    column<&MemInfoEntry::maxSpeedMhz>("MaxMemorySpeedInMhz"),
    column<&MemInfoEntry::sizeKB>("MemorySizeInKB"),
    column<&MemInfoEntry::dataWidth>("MemoryDataWidth"),
    column<&MemInfoEntry::present>("Present"),
};

constexpr Table modules{"/", "xyz.openbmc_project.Inventory.Item.Dimm",
                        columns};

} // namespace

int32_t getMemoryTableInfo(MemInfoEntry** outArray, int32_t* outCount)
{
    return getTable(modules, outArray, outCount);
}

void freeMemInfoEntry(MemInfoEntry* one)
{
    releaseFields(one, &MemInfoEntry::name, &MemInfoEntry::manufacturer,
                  &MemInfoEntry::partNumber, &MemInfoEntry::serialNumber,
                  &MemInfoEntry::memoryType, &MemInfoEntry::formFactor,
                  &MemInfoEntry::bankLocator, &MemInfoEntry::deviceLocator,
                  &MemInfoEntry::ecc);
}
