// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "base/codes.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace morvath
{

/**
 * Stores an array of zeroed records with the caller, whose it is from here on:
 * null when there is no memory, and for a count below 0. outArray is the place
 * of a pointer to a record.
 */
void* storeRecords(int32_t count, std::size_t recordSize, void* outArray);

/** 0 or -2. */
template <typename Record>
int32_t newRecords(int32_t count, Record** outArray)
{
    return storeRecords(count, sizeof(Record), outArray) || count == 0
               ? success
               : outOfMemory;
}

/** A copy of the text, which is the record's. */
void storeText(char*& field, std::string_view text);

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
