// SPDX-License-Identifier: Apache-2.0
#include "sim/machine.hpp"

#include "sim/service.hpp"

#include <utility>

namespace morvath::sim
{

namespace
{

Property* propertyAt(Service& service, const Place& place)
{
    Node* node = service.objects().find(place.path);
    return node == nullptr ? nullptr
                           : node->property(place.interface, place.property);
}

} // namespace

Machine::Machine(std::set<Behaviour> behaviours, const Services& services) :
    behaviours_(std::move(behaviours)),
    services_(services)
{}

std::string Machine::textAt(const Place& place) const
{
    for (const auto& service : services_)
    {
        const Property* property = propertyAt(*service, place);
        if (property != nullptr && property->value.text() != nullptr)
        {
            return *property->value.text();
        }
    }
    return {};
}

void Machine::change(const Place& place, const Value& value) const
{
    for (const auto& service : services_)
    {
        if (Property* property = propertyAt(*service, place))
        {
            service->change(place.path, place.interface, *property, value);
        }
    }
}

} // namespace morvath::sim
