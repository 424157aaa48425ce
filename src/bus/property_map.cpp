// SPDX-License-Identifier: Apache-2.0
#include "bus/property_map.hpp"

#include "base/required.hpp"
#include "bus/object_path.hpp"
#include "bus/render.hpp"

#include <strings.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace morvath
{
namespace
{

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

} // namespace

int PropertyMap::compareNames(const void* left, const void* right)
{
    return std::strcmp(static_cast<const Entry*>(left)->name,
                       static_cast<const Entry*>(right)->name);
}

PropertyMap::PropertyMap(std::span<const char* const> requested) :
    names(requested)
{
    entries.reserve(names.size());
    for (std::size_t column = 0; column < names.size(); ++column)
    {
        entries.push_back({required(names[column]), column});
    }
    // Here and not std::sort(), which is much more code.
    if (!entries.empty())
    {
        std::qsort(entries.data(), entries.size(), sizeof(Entry), compareNames);
    }
    for (std::size_t index = 1; index < entries.size(); ++index)
    {
        auto& entry = entries[index - 1];
        entry.isRepeated = std::strcmp(entry.name, entries[index].name) == 0;
    }
}

char** PropertyMap::readRow(ReplyReader reply, const char* path)
{
    TextArray row(names.size());
    readProperties(reply, row);
    for (std::size_t column = 0; column < names.size(); ++column)
    {
        if (!row[column] && fallsBackToPath(names[column]))
        {
            row.set(column, newText(lastSegment(path)));
        }
    }
    return row.release();
}

void PropertyMap::readProperties(ReplyReader& reply, TextArray& row)
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

} // namespace morvath
