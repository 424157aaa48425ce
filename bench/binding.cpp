// SPDX-License-Identifier: Apache-2.0
#include "client.hpp"
#include "morvath.h"

#include <sdbusplus/bus.hpp>
#include <systemd/sd-bus.h>

#include <cstring>
#include <type_traits>

// The way in which most programs on the platform read a table.

namespace morvath::bench
{
namespace
{

using PropertyList = std::vector<std::pair<std::string, PropertyValue>>;

sdbusplus::bus_t& connection()
{
    static sdbusplus::bus_t bus = [] {
        sd_bus* opened = nullptr;
        sd_bus_default(&opened);
        return sdbusplus::bus_t(opened, std::false_type());
    }();
    return bus;
}

struct Render
{
    template <typename T>
    char* operator()(const T& value) const
    {
        if constexpr (std::is_same_v<T, std::string>)
        {
            return strdup(value.c_str());
        }
        else if constexpr (std::is_same_v<T, bool>)
        {
            return strdup(value ? "1" : "0");
        }
        else if constexpr (std::is_same_v<T, double>)
        {
            return textOf(value);
        }
        else if constexpr (std::is_unsigned_v<T>)
        {
            return textOf(uint64_t{value});
        }
        else if constexpr (std::is_integral_v<T> && !std::is_same_v<T, int16_t>)
        {
            return textOf(int64_t{value});
        }
        else
        {
            return strdup("");
        }
    }
};

Row readRow(const std::string& service, const std::string& path)
{
    auto request = connection().new_method_call(service.c_str(), path.c_str(),
                                                propertiesInterface, "GetAll");
    request.append(std::string());
    PropertyList properties;
    connection().call(request).read(properties);
    Row row{};
    for (const auto& [name, value] : properties)
    {
        const auto column = columnOf(name.c_str());
        if (column < row.size())
        {
            std::free(row[column]);
            row[column] = std::visit(Render(), value);
        }
    }
    return row;
}

} // namespace

Rows readWithBinding()
{
    auto request = connection().new_method_call(mapperService, mapperPath,
                                                mapperService, "GetSubTree");
    request.append(std::string(root), int32_t{0},
                   std::vector<std::string>{interface});
    SubTree objects;
    connection().call(request).read(objects);
    Rows rows;
    for (const auto& [path, owners] : objects)
    {
        rows.push_back(readRow(owners.front().first, path));
    }
    return rows;
}

} // namespace morvath::bench
