// SPDX-License-Identifier: Apache-2.0
#include "sim/record/owner_recorder.hpp"

#include "sim/record/interface_order.hpp"

#include <algorithm>

namespace morvath::sim
{

namespace
{

bool isStandard(std::string_view interface)
{
    return interface.starts_with("org.freedesktop.DBus.");
}

} // namespace

bool hasOwnInterfaces(const std::vector<std::string>& names)
{
    return !std::ranges::all_of(names, isStandard);
}

Json OwnerRecorder::record(const std::vector<std::string>& names)
{
    Json interfaces = Json::object();
    if (!hasOwnInterfaces(names))
    {
        // Tells whether there is an object at all.
        reader_.properties(source_, "");
        return interfaces;
    }
    introspect();
    for (const std::string& name : names)
    {
        if (isStandard(name))
        {
            continue;
        }
        if (auto properties = readInterface(name))
        {
            interfaces[name] = *std::move(properties);
        }
    }
    return inOrder(interfaces);
}

void OwnerRecorder::introspect()
{
    try
    {
        introspected_ = introspectedFromXml(reader_.introspection(source_));
    }
    catch (const BusError& error)
    {
        tell("which properties are read-only", error.what());
    }
}

std::optional<Json> OwnerRecorder::readInterface(const std::string& interface)
{
    if (sd_bus_interface_name_is_valid(interface.c_str()) <= 0)
    {
        tell(interface, "is no name of an interface");
        return std::nullopt;
    }
    Json properties = Json::object();
    bool isListed = true;
    try
    {
        properties = listed(interface);
    }
    catch (const BusError& error)
    {
        tell(interface, error.what());
        isListed = false;
    }
    if (!isListed && !introspected_.contains(interface))
    {
        return std::nullopt;
    }
    addUnlisted(properties, interface, isListed);
    for (const IntrospectedProperty& property : introspected_[interface])
    {
        if (property.isReadOnly && properties.contains(property.name))
        {
            properties[property.name]["readOnly"] = true;
        }
    }
    return properties;
}

Json OwnerRecorder::listed(const std::string& interface)
{
    Json properties = Json::object();
    for (const Json& entry : reader_.properties(source_, interface))
    {
        const auto& name = entry[0].get_ref<const std::string&>();
        if (sd_bus_member_name_is_valid(name.c_str()) > 0)
        {
            properties[name] = entry[1];
        }
        else
        {
            tell(interface + "." + name, "is no name of a property");
        }
    }
    return properties;
}

/** One getter that fails takes GetAll with it; the others are not lost. */
void OwnerRecorder::addUnlisted(Json& properties, const std::string& interface,
                                bool isHidden)
{
    for (const IntrospectedProperty& property : introspected_[interface])
    {
        if (properties.contains(property.name))
        {
            continue;
        }
        try
        {
            Json value = reader_.property(source_, interface, property.name);
            if (isHidden)
            {
                value["hidden"] = true;
            }
            properties[property.name] = std::move(value);
        }
        catch (const BusError& error)
        {
            tell(interface + "." + property.name, error.what());
        }
    }
}

Json OwnerRecorder::inOrder(const Json& interfaces)
{
    const auto isFilled = [](const Json& properties) {
        return !properties.empty();
    };
    if (std::ranges::count_if(interfaces, isFilled) < 2)
    {
        return interfaces;
    }
    try
    {
        return inRegistrationOrder(interfaces, reader_.properties(source_, ""));
    }
    catch (const BusError&)
    {
        // Where GetAll fails for one interface, it fails for all at once.
        return interfaces;
    }
}

void OwnerRecorder::tell(const std::string& what, const std::string& why)
{
    omissions_.tell(source_.path + ": " + source_.service + ": " + what, why);
}

} // namespace morvath::sim
