// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "base/c_memory.hpp"
#include "bus/reply_reader.hpp"

#include <cstddef>
#include <span>
#include <vector>

namespace morvath
{

/**
 * From the names of the requested properties to the columns of a row. It is
 * made once for a table; the values of an object go straight into its row.
 */
class PropertyMap
{
  public:
    /** A null name raises std::logic_error. The names are not copied. */
    explicit PropertyMap(std::span<const char* const> names);

    /** The row of the object at path, in C memory, from the reply of "GetAll".
     */
    char** readRow(ReplyReader reply, const char* path);

  private:
    struct Entry
    {
        const char* name;
        std::size_t column;
        /** Whether the next entry has the same name. */
        bool isRepeated = false;
        /** What the object before this one had. */
        char type = BasicValue::other;
    };

    static int compareNames(const void* left, const void* right);
    void readProperties(ReplyReader& reply, TextArray& row);
    /** Null for a name that nobody asked for. */
    Entry* find(const char* name, std::size_t position);

    std::span<const char* const> names;
    /** In byte order of the names; a name asked for twice has two entries. */
    std::vector<Entry> entries;
    /** Where the names of the object before belong, by their position. */
    std::vector<Entry*> places;
};

} // namespace morvath
