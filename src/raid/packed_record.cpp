// SPDX-License-Identifier: Apache-2.0
#include "raid/packed_record.hpp"

#include <algorithm>

namespace morvath
{

std::string PackedRecord::text(std::size_t offset) const
{
    const auto rest = bytes.subspan(offset);
    return {rest.begin(), std::find(rest.begin(), rest.end(), '\0')};
}

std::string PackedRecord::characters(std::size_t offset,
                                     std::size_t length) const
{
    const auto area = bytes.subspan(offset, length);
    return {area.begin(), area.end()};
}

uint64_t PackedRecord::littleEndian(std::size_t offset, std::size_t size) const
{
    uint64_t number = 0;
    while (size-- > 0)
    {
        number = number << 8 | bytes[offset + size];
    }
    return number;
}

} // namespace morvath
