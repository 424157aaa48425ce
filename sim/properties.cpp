// SPDX-License-Identifier: Apache-2.0
#include "sim/properties.hpp"

#include <algorithm>
#include <string>

namespace morvath::sim
{

constexpr const char* invalidEnumeration =
    "xyz.openbmc_project.sdbusplus.Error.InvalidEnumString";

namespace
{

Property& namedProperty(const Request& request, Node& node,
                        const MissingProperties& missing)
{
    const std::string_view interface = request.text(0);
    const std::string_view name = request.text(1);
    Property* property = node.property(interface, name);
    if (property == nullptr || missing.contains(interface, name))
    {
        throw BusError(SD_BUS_ERROR_UNKNOWN_PROPERTY,
                       "Unknown interface " + std::string(interface) +
                           " or property " + std::string(name) + ".");
    }
    return *property;
}

void appendProperty(sd_bus_message* reply, const Property& property)
{
    check(sd_bus_message_open_container(reply, SD_BUS_TYPE_DICT_ENTRY, "sv"),
          "sd_bus_message_open_container");
    check(sd_bus_message_append_basic(reply, 's', property.name.c_str()),
          "sd_bus_message_append_basic");
    appendVariant(reply, property.value);
    check(sd_bus_message_close_container(reply),
          "sd_bus_message_close_container");
}

void appendProperties(sd_bus_message* reply, const Interface& interface,
                      const MissingProperties& missing)
{
    for (const Property& property : interface.properties)
    {
        if (!property.hidden &&
            !missing.contains(interface.name, property.name))
        {
            appendProperty(reply, property);
        }
    }
}

void checkInterface(std::string_view name, const Node& node)
{
    const bool isStandard =
        std::find(standardInterfaces.begin(), standardInterfaces.end(), name) !=
        standardInterfaces.end();
    // sd-bus knows the standard interfaces too, just without properties.
    if (!name.empty() && !isStandard && node.interface(name) == nullptr)
    {
        throw BusError(SD_BUS_ERROR_UNKNOWN_INTERFACE,
                       "Unknown interface '" + std::string(name) + "'.");
    }
}

void checkEnumeration(const Property& property, const Value& value)
{
    const std::vector<std::string>& texts = property.enumeration;
    if (!texts.empty() &&
        std::find(texts.begin(), texts.end(), *value.text()) == texts.end())
    {
        throw BusError(invalidEnumeration,
                       "The text is no member of the enumeration.");
    }
}

} // namespace

Message getProperty(const Request& request, Node& node,
                    const MissingProperties& missing)
{
    request.expectArguments("ss");
    const Property& property = namedProperty(request, node, missing);
    Message reply = newReply(request.message);
    appendVariant(reply.get(), property.value);
    return reply;
}

Message getAllProperties(const Request& request, const Node& node,
                         const MissingProperties& missing)
{
    request.expectArguments("s");
    const std::string_view wanted = request.text(0);
    checkInterface(wanted, node);
    Message reply = newReply(request.message);
    check(sd_bus_message_open_container(reply.get(), SD_BUS_TYPE_ARRAY, "{sv}"),
          "sd_bus_message_open_container");
    // sd-bus puts a new interface in front of the earlier ones.
    for (auto interface = node.interfaces.rbegin();
         interface != node.interfaces.rend(); ++interface)
    {
        if (wanted.empty() || wanted == interface->name)
        {
            appendProperties(reply.get(), *interface, missing);
        }
    }
    check(sd_bus_message_close_container(reply.get()),
          "sd_bus_message_close_container");
    return reply;
}

Property& settableProperty(const Request& request, Node& node,
                           const MissingProperties& missing)
{
    request.expectArguments("ssv");
    Property& property = namedProperty(request, node, missing);
    if (property.readOnly)
    {
        throw BusError(SD_BUS_ERROR_PROPERTY_READ_ONLY,
                       "Property '" + property.name + "' is not writable.");
    }
    const Value& value = newValue(request);
    if (value.signature != property.value.signature)
    {
        throw BusError(SD_BUS_ERROR_INVALID_ARGS,
                       "Incorrect parameters for property '" + property.name +
                           "', expected '" + property.value.signature +
                           "', got '" + value.signature + "'.");
    }
    checkEnumeration(property, value);
    return property;
}

const Value& newValue(const Request& request)
{
    return request.arguments->at(2).members().front();
}

} // namespace morvath::sim
