// SPDX-License-Identifier: Apache-2.0
#include "sim/fault_table.hpp"

#include <algorithm>

namespace morvath::sim
{

namespace
{

bool matches(std::string_view wanted, std::string_view actual)
{
    return wanted.empty() || wanted == actual;
}

/**
 * A fault may name the interface that is called or, for a properties call,
 * the interface whose properties it is about.
 */
bool limitsInterface(const FaultCondition& when)
{
    return !when.interface.empty() && when.interface != propertiesInterface;
}

/** Whether GetAll would run the getter that the condition asks for. */
bool readsAll(const FaultCondition& when, std::string_view requested,
              const Node& node)
{
    const auto isRead = [&](const Property& property) {
        return !property.hidden && matches(when.property, property.name);
    };
    const auto concerns = [&](const Interface& interface) {
        if (!matches(requested, interface.name) ||
            (limitsInterface(when) && when.interface != interface.name))
        {
            return false;
        }
        return when.property.empty() ||
               std::any_of(interface.properties.begin(),
                           interface.properties.end(), isRead);
    };
    return std::any_of(node.interfaces.begin(), node.interfaces.end(),
                       concerns);
}

bool matchesContents(const FaultCondition& when, const Request& request,
                     const Node* node)
{
    if (!request.isForProperties())
    {
        return when.property.empty() &&
               matches(when.interface, request.interface);
    }
    if (when.property.empty() && !limitsInterface(when))
    {
        return true;
    }
    if (request.member == "GetAll")
    {
        return node != nullptr && readsAll(when, request.text(0), *node);
    }
    return (!limitsInterface(when) || when.interface == request.text(0)) &&
           matches(when.property, request.text(1));
}

bool matchesCall(const FaultCondition& when, const Request& request,
                 const Node* node)
{
    return matches(when.service, request.service) &&
           matches(when.path, request.path) &&
           matches(when.member, request.member) &&
           matchesContents(when, request, node);
}

} // namespace

bool MissingProperties::contains(std::string_view interface,
                                 std::string_view property) const
{
    const auto isMissing = [&](const FaultCondition* when) {
        return when->property == property &&
               (!limitsInterface(*when) || when->interface == interface);
    };
    return std::any_of(conditions_.begin(), conditions_.end(), isMissing);
}

FaultTable::FaultTable(const std::vector<Fault>& faults)
{
    for (const Fault& fault : faults)
    {
        faults_.push_back({fault});
    }
}

Verdict FaultTable::judge(const Request& request, const Node* node)
{
    Verdict verdict;
    for (CountedFault& counted : faults_)
    {
        const FaultCondition& when = counted.fault.when;
        if (!matchesCall(when, request, node))
        {
            continue;
        }
        // Counted also when an earlier fault has decided already, so that the
        // order of the faults does not shift the numbers of the calls.
        counted.calls++;
        if (when.call != 0 && when.call != counted.calls)
        {
            continue;
        }
        if (std::holds_alternative<MissingProperty>(counted.fault.then))
        {
            verdict.missing.add(when);
        }
        else if (verdict.effect == nullptr)
        {
            verdict.effect = &counted.fault.then;
        }
    }
    return verdict;
}

} // namespace morvath::sim
