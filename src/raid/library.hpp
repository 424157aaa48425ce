// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "vontel.hpp"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace morvath
{

/**
 * Reads a packed little-endian record at byte offsets, without any alignment
 * and never beyond its end.
 */
class PackedRecord
{
  public:
    template <typename Record>
    explicit PackedRecord(const Record& record) : bytes(record.bytes)
    {}

    uint8_t byte(std::size_t offset) const { return bytes[offset]; }

    template <std::unsigned_integral Number>
    Number number(std::size_t offset) const
    {
        uint64_t number = 0;
        for (auto size = sizeof(Number); size-- > 0;)
        {
            number = number << 8 | bytes[offset + size];
        }
        return static_cast<Number>(number);
    }

    /** Up to a NUL, or the end of the record, which it lies in. */
    std::string_view text(std::size_t offset) const
    {
        const auto rest = characters(offset, bytes.size() - offset);
        return rest.substr(0, rest.find('\0'));
    }

    /** Just so many characters, whatever they are. */
    std::string_view characters(std::size_t offset, std::size_t length) const
    {
        const auto area = bytes.subspan(offset, length);
        return {reinterpret_cast<const char*>(area.data()), area.size()};
    }

  private:
    std::span<const unsigned char> bytes;
};

/** What every operation of the RAID management library with one is given. */
constexpr uint8_t selector = 0;

// What reads several things tells whether all could be read; those before the
// first that could not are there.

/** Appends the record of each id. */
template <typename Record, typename Id, typename Read>
bool readEach(const std::vector<Id>& ids, std::vector<Record>& records,
              const Read& read)
{
    for (const auto id : ids)
    {
        Record record{};
        if (read(id, &record) != 0)
        {
            return false;
        }
        records.push_back(record);
    }
    return true;
}

/** Without a RAID manager there are none. */
bool readRaidIds(std::vector<uint32_t>& raidIds);

using PhysicalDrives = std::vector<vontel::PhyDevInfo_T>;
using LogicalDrives = std::vector<vontel::LogicalDevInfo_T>;

/** Those behind every controller, in the order of the library. */
bool readPhysicalDrives(PhysicalDrives& drives);
bool readLogicalDrives(LogicalDrives& drives);

} // namespace morvath
