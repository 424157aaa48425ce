// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "vontel.hpp"

#include <nlohmann/json.hpp>

#include <array>
#include <span>
#include <string>
#include <string_view>

namespace vontel::simulation
{

using Json = nlohmann::ordered_json;
using Bytes = std::span<unsigned char>;

/** The keys of texts for codes. */
constexpr std::array<std::string_view, 5> codeKeys{
    "raid_level", "drive_state", "media_type", "interface_type", "speed"};

/** The identifiers of a configuration, in the order of their arguments. */
constexpr std::array<std::string_view, 4> identifierKeys{
    "vendor", "device", "subvendor", "subdevice"};

/** A value that is not what it has to be. */
struct WrongValue : std::runtime_error
{
    WrongValue(const Json& value, const std::string& message) :
        std::runtime_error(message),
        value(&value)
    {}

    const Json* value;
};

/** A key of a section and the bytes of the record that it describes. */
struct Field
{
    enum Kind
    {
        number,
        text,
        /** With blanks behind it. */
        padded,
        /** How many there are, and then an entry for each. */
        members,
    };

    std::string_view key;
    Kind kind;
    std::size_t offset;
    std::size_t length;
};

/** What describes records of one kind. */
struct RecordKind
{
    std::span<const Field> fields;
    /** What the description may have besides. */
    std::span<const std::string_view> otherKeys;
};

extern const RecordKind controllers;
extern const RecordKind physicalDrives;
extern const RecordKind logicalDrives;

/** What a drive is before it is filled: it belongs to a controller. */
PhyDevInfo_T blankDrive(uint32_t raidId);

/**
 * Writes what is described; the other bytes stay as they are. "raw" in the
 * description puts bytes anywhere, after the fields.
 * @throws WrongValue
 */
void fill(const Json& description, const RecordKind& kind, Bytes record);

/**
 * The reverse: what fills a record like this one. "raw" stands for what the
 * fields cannot say; what a blank record has needs no key.
 * @param[in] blank        what the record is before it is filled
 * @param[in] description  keys and values that stand in any case
 */
Json describe(Bytes record, const RecordKind& kind, Bytes blank,
              Json description);

/** The value itself. @throws WrongValue  it is not a text */
const std::string& textOf(const Json& value);

/** @throws WrongValue  it is not a whole number from 0 on */
uint64_t numberOf(const Json& value, uint64_t most);

/** Whether JSON can hold it: a text may have bytes that are not UTF-8. */
bool isUtf8(const Json& value);

} // namespace vontel::simulation
