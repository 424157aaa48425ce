// SPDX-License-Identifier: Apache-2.0
#include "raid/packed_record.hpp"

namespace morvath
{

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
