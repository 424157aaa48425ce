// SPDX-License-Identifier: Apache-2.0
#include "bus/property_map.hpp"

#include "bus/render.hpp"

#include <sdbusplus/message/native_types.hpp>
#include <strings.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

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

CText lastSegment(const char* path)
{
    return copyText(sdbusplus::object_path(path).filename().c_str());
}

} // namespace

PropertyMap::PropertyMap(std::span<const char* const> requested) :
    names(requested)
{
    entries.reserve(names.size());
    for (std::size_t column = 0; column < names.size(); ++column)
    {
        if (!names[column])
        {
            throw std::logic_error(
                "basic_string: construction from null is not valid");
        }
        entries.push_back({names[column], column});
    }
    std::ranges::sort(entries, isLess, &Entry::name);
}

TextArray PropertyMap::readRow(ReplyReader reply, const char* path)
{
    TextArray row(names.size());
    readProperties(reply, row);
    for (std::size_t column = 0; column < names.size(); ++column)
    {
        if (!row[column] && fallsBackToPath(names[column]))
        {
            row.set(column, lastSegment(path));
        }
    }
    return row;
}

void PropertyMap::readProperties(ReplyReader& reply, TextArray& row)
{
    reply.enter('a', "{sv}");
    while (reply.enter('e', "sv"))
    {
        const auto columns = columnsOf(reply.text());
        if (columns.empty())
        {
            reply.skip("v");
        }
        else
        {
            // Of a name that two interfaces share the last value stays.
            const auto value = reply.variant(columns.front().type);
            for (const auto& entry : columns)
            {
                row.set(entry.column, renderPropertyValue(value));
            }
        }
        reply.leave();
    }
    reply.leave();
}

std::span<PropertyMap::Entry> PropertyMap::columnsOf(const char* name)
{
    const auto first =
        std::ranges::lower_bound(entries, name, isLess, &Entry::name);
    auto last = first;
    while (last != entries.end() && std::strcmp(last->name, name) == 0)
    {
        ++last;
    }
    return {first, last};
}

} // namespace morvath
