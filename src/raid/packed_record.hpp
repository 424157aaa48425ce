// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

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
        return static_cast<Number>(littleEndian(offset, sizeof(Number)));
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
    uint64_t littleEndian(std::size_t offset, std::size_t size) const;

    std::span<const unsigned char> bytes;
};

} // namespace morvath
