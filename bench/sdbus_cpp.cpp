// SPDX-License-Identifier: Apache-2.0
#include "client.hpp"

#include <sdbus-c++/sdbus-c++.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

namespace morvath::bench
{
namespace
{

using Interfaces = std::vector<std::string>;
using Owners = std::map<std::string, Interfaces>;
using Objects = std::map<std::string, Owners>;
using Properties = std::map<std::string, sdbus::Variant>;

sdbus::IConnection& connection()
{
    static const auto bus = sdbus::createDefaultBusConnection();
    return *bus;
}

char* render(const sdbus::Variant& value)
{
    const auto type = value.peekValueType();
    switch (type.size() == 1 ? type[0] : '\0')
    {
        case 's': return strdup(value.get<std::string>().c_str());
        case 'x': return textOf(value.get<int64_t>());
        case 't': return textOf(value.get<uint64_t>());
        case 'd': return textOf(value.get<double>());
        case 'i': return textOf(int64_t{value.get<int32_t>()});
        case 'u': return textOf(uint64_t{value.get<uint32_t>()});
        case 'q': return textOf(uint64_t{value.get<uint16_t>()});
        case 'y': return textOf(uint64_t{value.get<uint8_t>()});
        case 'b': return strdup(value.get<bool>() ? "1" : "0");
        default: return strdup("");
    }
}

Row readRow(const std::string& service, const std::string& path)
{
    const auto proxy = sdbus::createProxy(connection(), service, path);
    Properties properties;
    proxy->callMethod("GetAll")
        .onInterface(propertiesInterface)
        .withArguments(std::string())
        .storeResultsTo(properties);
    Row row{};
    for (const auto& [name, value] : properties)
    {
        const auto column = columnOf(name.c_str());
        if (column < row.size())
        {
            row[column] = render(value);
        }
    }
    return row;
}

} // namespace

Rows readWithSdBusCpp()
{
    const auto mapper =
        sdbus::createProxy(connection(), mapperService, mapperPath);
    Objects objects;
    mapper->callMethod("GetSubTree")
        .onInterface(mapperService)
        .withArguments(std::string(root), int32_t{0}, Interfaces{interface})
        .storeResultsTo(objects);
    Rows rows;
    for (const auto& [path, owners] : objects)
    {
        rows.push_back(readRow(owners.begin()->first, path));
    }
    return rows;
}

} // namespace morvath::bench
