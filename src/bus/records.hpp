// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace morvath
{

/** Zeroed records; null when there is no memory, or for less than none. */
void* allocateRecords(int32_t count, std::size_t recordSize);

/** Releases the texts of a record and sets them to null. */
template <typename Record, typename... Texts>
void releaseFields(Record* record, Texts... texts)
{
    if (record)
    {
        ((std::free(record->*texts), record->*texts = nullptr), ...);
    }
}

} // namespace morvath
