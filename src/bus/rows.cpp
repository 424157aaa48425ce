// SPDX-License-Identifier: Apache-2.0
#include "bus/rows.hpp"

#include "base/required.hpp"
#include "bus/mapper.hpp"
#include "bus/properties.hpp"
#include "bus/property_map.hpp"
#include "morvath.h"

#include <algorithm>

namespace morvath
{
namespace
{

constexpr const char* allInterfaces = "";

char** readRow(PropertyMap& properties, const MappedObject& object)
{
    auto reply =
        Request(object.service, object.path, propertiesInterface, "GetAll")
            .append(allInterfaces)
            .call();
    return properties.readRow(ReplyReader(reply), object.path);
}

} // namespace

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
        rows[count] = readRow(properties, object);
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
