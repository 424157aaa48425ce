// SPDX-License-Identifier: Apache-2.0
#include "support/machine.hpp"

namespace morvath::tests
{

Machine Machine::server()
{
    Machine machine;
    machine.document["extends"] = "default";
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

Json property(const std::string& type, const Json& value)
{
    return {{"type", type}, {"value", value}};
}

Json text(const std::string& value)
{
    return property("s", value);
}

} // namespace morvath::tests
