// SPDX-License-Identifier: Apache-2.0
#include "support/machine.hpp"

#include <map>
#include <memory>

namespace morvath::tests
{
namespace
{

/** Neighbours with the same interfaces are of one kind. */
std::string kindOf(const sim::Object& object)
{
    auto kind = object.path.substr(0, object.path.rfind('/'));
    for (const auto& interface : object.owners.at(0).interfaces)
    {
        kind += ' ' + interface.name;
    }
    return kind;
}

} // namespace

Machine Machine::server()
{
    Machine machine;
    machine.document["extends"] = "default";
    return machine;
}

Machine Machine::smallServer()
{
    // One network service that refuses nothing, and a clock that can be set.
    auto machine = server().behaves("ntp-servers-in-use");
    std::map<std::string, unsigned> seen;
    const auto standard = sim::Scenario::standard();
    for (const auto& object : standard.objects)
    {
        // Of sensors there are six tables.
        const auto isSensor = object.path.contains("/sensors/");
        if (++seen[kindOf(object)] > (isSensor ? 1 : 2))
        {
            machine.without(object.path);
        }
    }
    return machine;
}

Machine& Machine::owns(const std::string& path, const std::string& service,
                       const Json& interfaces)
{
    auto& objects = document["objects"];
    if (objects.empty() || objects.back()["path"] != path)
    {
        objects.push_back({{"path", path}, {"services", Json::array()}});
    }
    objects.back()["services"].push_back(
        {{"name", service}, {"interfaces", interfaces}});
    return *this;
}

Machine& Machine::without(const std::string& path)
{
    document["objects"].push_back({{"path", path}, {"remove", true}});
    return *this;
}

Machine& Machine::fault(const Json& when, const Json& then)
{
    document["faults"].push_back({{"when", when}, {"then", then}});
    return *this;
}

Machine& Machine::withoutMapper()
{
    document["mapper"] = false;
    return *this;
}

Machine& Machine::behaves(const std::string& behaviour)
{
    document["behaviours"].push_back(behaviour);
    return *this;
}

sim::Scenario Machine::scenario() const
{
    return sim::Scenario::parse(document.dump(), "test");
}

sim::Scenario withFault(sim::Scenario scenario, const Json& when,
                        const Json& then)
{
    const auto faults = std::make_shared<const Json>(
        Json::array({{{"when", when}, {"then", then}}}));
    scenario.faults = sim::readFaults(*faults, faults, scenario);
    return scenario;
}

Json property(const std::string& type, const Json& value)
{
    return {{"type", type}, {"value", value}};
}

Json text(const std::string& value) { return property("s", value); }

} // namespace morvath::tests
