// SPDX-License-Identifier: Apache-2.0
#include "bus/call.hpp"
#include "bus/mapper.hpp"
#include "bus/process_bus.hpp"
#include "bus/properties.hpp"
#include "bus/property_map.hpp"
#include "morvath.h"

#include <algorithm>

namespace morvath
{
namespace
{

constexpr const char* allInterfaces = "";

sdbusplus::message_t getAll(const MappedObject& object)
{
    auto request = processBus.new_method_call(object.service, object.path,
                                              propertiesInterface, "GetAll");
    request.append(allInterfaces);
    return processBus.call(request);
}

char** readRow(PropertyMap& properties, const MappedObject& object)
{
    auto reply = getAll(object);
    return properties.readRow(ReplyReader(reply), object.path).release();
}

} // namespace
} // namespace morvath

using namespace morvath;

int32_t getDbusTableData(const char* rootPath, const char* interfaceName,
                         const char* const* propertyNames,
                         int32_t propertyCount, char**** rowsOut,
                         int32_t* rowCountOut)
{
    ObjectList objects;
    if (const auto code = objects.query(rootPath, interfaceName))
    {
        return code;
    }

    const std::size_t columns = std::max(propertyCount, int32_t{0});
    PropertyMap properties({propertyNames, columns});

    // Stored before the first row and counted row by row: what was read stays
    // with the caller when a later object fails.
    char*** rows =
        static_cast<char***>(allocateZeroed(objects.size(), sizeof(char**)));
    *rowsOut = rows;
    for (const auto& object : objects)
    {
        *rows++ = readRow(properties, object);
        ++*rowCountOut;
    }
    return success;
}
