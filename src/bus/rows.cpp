// SPDX-License-Identifier: Apache-2.0
#include "bus/rows.hpp"

#include "base/texts.hpp"
#include "bus/mapper.hpp"
#include "bus/properties.hpp"
#include "morvath.h"

#include <strings.h>
#include <systemd/sd-bus.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <vector>

namespace morvath
{
namespace
{

constexpr int decimals = 2;

// The longest text is that of the lowest double: sign, digits, point, decimals.
constexpr std::size_t longestNumber =
    1 + std::numeric_limits<double>::max_exponent10 + 1 + 1 + decimals;

template <typename Number, typename... Format>
CText renderNumber(Number value, Format... format)
{
    std::array<char, longestNumber> text;
    const auto end = std::to_chars(text.begin(), text.end(), value, format...);
    return newText({text.begin(), end.ptr});
}

constexpr const char* allInterfaces = "";
constexpr auto fallbackName = "Name";
constexpr std::size_t fallbackLength = 4;

bool isLess(const char* left, const char* right)
{
    return std::strcmp(left, right) < 0;
}

/** Any name that begins so, in either case, falls back to the path. */
bool fallsBackToPath(const char* name)
{
    return strncasecmp(name, fallbackName, fallbackLength) == 0;
}

/**
 * From the names of the requested properties to the columns of a row. It is
 * made once for a table; the values of an object go straight into its row.
 */
class PropertyMap
{
  public:
    /** A null name raises std::logic_error. The names are not copied. */
    explicit PropertyMap(std::span<const char* const> names);

    /** The row of an object, in C memory. */
    char** readRow(const MappedObject& object);

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

    void readProperties(ReplyReader reply, TextArray& row);
    /** Null for a name that nobody asked for. */
    Entry* find(const char* name, std::size_t position);

    std::span<const char* const> names;
    /** In byte order of the names; a name asked for twice has two entries. */
    std::vector<Entry> entries;
    /** Where the names of the object before belong, by their position. */
    std::vector<Entry*> places;
};

PropertyMap::PropertyMap(std::span<const char* const> requested) :
    names(requested)
{
    entries.reserve(names.size());
    for (std::size_t column = 0; column < names.size(); ++column)
    {
        entries.push_back({required(names[column]), column});
    }
    // Here and not std::sort(), which is much more code.
    const auto compare = [](const void* left, const void* right) {
        return std::strcmp(static_cast<const Entry*>(left)->name,
                           static_cast<const Entry*>(right)->name);
    };
    if (!entries.empty())
    {
        std::qsort(entries.data(), entries.size(), sizeof(Entry), compare);
    }
    for (std::size_t index = 1; index < entries.size(); ++index)
    {
        auto& entry = entries[index - 1];
        entry.isRepeated = std::strcmp(entry.name, entries[index].name) == 0;
    }
}

char** PropertyMap::readRow(const MappedObject& object)
{
    auto reply =
        Request(object.service, object.path, propertiesInterface, "GetAll")
            .append(allInterfaces)
            .call();
    TextArray row(names.size());
    readProperties(ReplyReader(reply), row);
    for (std::size_t column = 0; column < names.size(); ++column)
    {
        if (!row[column] && fallsBackToPath(names[column]))
        {
            row.set(column, newText(lastSegment(object.path)));
        }
    }
    return row.release();
}

void PropertyMap::readProperties(ReplyReader reply, TextArray& row)
{
    std::size_t position = 0;
    reply.enter('a', "{sv}");
    while (reply.enter('e', "sv"))
    {
        if (auto* entry = find(reply.text(), position++))
        {
            // Of a name that two interfaces share the last value stays.
            const auto value = reply.variant(entry->type);
            row.set(entry->column, renderPropertyValue(value));
            for (; entry->isRepeated; ++entry)
            {
                row.set(entry[1].column, renderPropertyValue(value));
            }
        }
        else
        {
            reply.skip("v");
        }
        reply.leave();
    }
    reply.leave();
}

PropertyMap::Entry* PropertyMap::find(const char* name, std::size_t position)
{
    auto* const end = entries.data() + entries.size();
    if (position == places.size())
    {
        places.push_back(end);
    }
    // Objects of a table mostly have the same properties in the same order, so
    // that the place of the object before usually is the right one.
    auto*& place = places[position];
    const int order = place == end ? -1 : std::strcmp(name, place->name);
    if (order == 0)
    {
        return place;
    }
    if (order < 0 && place != entries.data() && isLess(place[-1].name, name))
    {
        return nullptr;
    }
    place = std::ranges::lower_bound(entries.data(), end, name, isLess,
                                     &Entry::name);
    return place != end && std::strcmp(place->name, name) == 0 ? place
                                                               : nullptr;
}

} // namespace

CText renderPropertyValue(const BasicValue& value)
{
    switch (value.type)
    {
        case SD_BUS_TYPE_STRING: return newText(value.text);
        case SD_BUS_TYPE_INT64: return renderNumber(value.int64);
        case SD_BUS_TYPE_UINT64: return renderNumber(value.uint64);
        case SD_BUS_TYPE_DOUBLE:
            return renderNumber(value.real, std::chars_format::fixed, decimals);
        case SD_BUS_TYPE_INT32: return renderNumber(int64_t{value.int32});
        case SD_BUS_TYPE_UINT32: return renderNumber(uint64_t{value.uint32});
        case SD_BUS_TYPE_UINT16: return renderNumber(uint64_t{value.uint16});
        case SD_BUS_TYPE_BYTE: return renderNumber(uint64_t{value.byte});
        case SD_BUS_TYPE_BOOLEAN: return newText(value.boolean ? "1" : "0");
        default:
            // Lists and, unlike its unsigned neighbour, the signed 16-bit
            // number show as empty cells on purpose.
            return newText("");
    }
}

Rows::~Rows()
{
    for (std::size_t index = 0; index < count; ++index)
    {
        releaseTexts(rows[index], columns);
    }
    std::free(rows);
}

int32_t Rows::read(const TableQuery& query, int32_t* counter)
{
    ObjectList objects;
    if (const auto code = objects.query(query.root, query.interface))
    {
        return code;
    }
    PropertyMap properties(query.properties);
    columns = query.properties.size();
    rows = static_cast<char***>(allocateZeroed(objects.size(), sizeof(char**)));
    for (const auto& object : objects)
    {
        rows[count] = properties.readRow(object);
        ++count;
        if (counter)
        {
            ++*counter;
        }
    }
    return success;
}

} // namespace morvath

using namespace morvath;

int32_t getDbusTableData(const char* rootPath, const char* interfaceName,
                         const char* const* propertyNames,
                         int32_t propertyCount, char**** rowsOut,
                         int32_t* rowCountOut)
{
    const std::size_t columns = std::max(propertyCount, int32_t{0});
    if (columns > 0)
    {
        required(propertyNames);
    }
    Rows rows;
    try
    {
        const auto code = rows.read(
            {rootPath, interfaceName, {propertyNames, columns}}, rowCountOut);
        if (code == success)
        {
            *rowsOut = rows.release();
        }
        return code;
    }
    catch (...)
    {
        // What was read stays with the caller when a later object fails.
        if (char*** read = rows.release())
        {
            *rowsOut = read;
        }
        throw;
    }
}
