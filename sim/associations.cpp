// SPDX-License-Identifier: Apache-2.0
#include "sim/associations.hpp"

#include <systemd/sd-bus.h>

#include <algorithm>

namespace morvath::sim
{

namespace
{

void addEndpoint(Associations& associations, const std::string& path,
                 const std::string& name, const std::string& endpoint)
{
    // The names are free text, also empty for a one-way association.
    const std::string object = path + "/" + name;
    if (sd_bus_object_path_is_valid(object.c_str()) <= 0)
    {
        return;
    }
    std::vector<std::string>& endpoints = associations[object];
    const auto place =
        std::lower_bound(endpoints.begin(), endpoints.end(), endpoint);
    if (place == endpoints.end() || *place != endpoint)
    {
        endpoints.insert(place, endpoint);
    }
}

const Property* definitionsOf(const Node& node)
{
    const Interface* interface = node.interface(associationDefinitions);
    if (interface == nullptr)
    {
        return nullptr;
    }
    for (const Property& property : interface->properties)
    {
        if (property.name == "Associations" &&
            property.value.signature == "a(sss)")
        {
            return &property;
        }
    }
    return nullptr;
}

} // namespace

void addAssociations(Associations& associations, const ObjectTree& objects,
                     const std::function<bool(std::string_view)>& exists)
{
    for (const auto& [path, node] : objects.nodes())
    {
        const Property* definitions = definitionsOf(node);
        if (definitions == nullptr)
        {
            continue;
        }
        for (const Value& definition : definitions->value.members())
        {
            const std::string& forward = *definition.members()[0].text();
            const std::string& backward = *definition.members()[1].text();
            const std::string& endpoint = *definition.members()[2].text();
            if (exists(endpoint))
            {
                addEndpoint(associations, path, forward, endpoint);
                addEndpoint(associations, endpoint, backward, path);
            }
        }
    }
}

} // namespace morvath::sim
