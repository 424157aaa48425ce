// SPDX-License-Identifier: Apache-2.0
#include "bus/records.hpp"

namespace morvath
{

void* allocateRecords(int32_t count, std::size_t recordSize)
{
    return count < 0 ? nullptr : std::calloc(count, recordSize);
}

} // namespace morvath
