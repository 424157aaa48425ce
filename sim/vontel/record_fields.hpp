// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json_cursor.hpp"

#include <span>
#include <string_view>
#include <vector>

namespace morvath::sim
{

using Bytes = std::span<unsigned char>;

/** A key of a scenario and the bytes of the record that it describes. */
struct RecordField
{
    std::string_view key;
    std::size_t offset;
    std::size_t length;
    void (*write)(const JsonCursor& value, Bytes area);
    Json (*read)(Bytes area);
};

using RecordFields = std::span<const RecordField>;

/** Little-endian, as wide as the area. */
void writeNumber(std::uint64_t number, Bytes area);

/**
 * Writes what is described; the other bytes stay as they are. "raw" in the
 * description puts bytes anywhere, after the fields.
 * @param[in] otherKeys  that the description may have besides
 */
void fillRecord(const JsonCursor& description, RecordFields fields,
                Bytes record, std::vector<std::string_view> otherKeys);

/**
 * The reverse: what fills a record like this one. "raw" stands for what the
 * fields cannot say; what a blank record has needs no key.
 * @param[in,out] blank  what the record is before it is filled
 * @param[in] known      keys and values that stand in any case
 */
Json describeRecord(Bytes record, RecordFields fields, Bytes blank, Json known);

extern const RecordFields controllerFields;
extern const RecordFields physicalDriveFields;
extern const RecordFields logicalDriveFields;

} // namespace morvath::sim
