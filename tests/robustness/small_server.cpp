// SPDX-License-Identifier: Apache-2.0
#include "robustness/small_server.hpp"

#include "sim/scenario.hpp"

#include <map>
#include <string>

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

Machine smallServer()
{
    constexpr unsigned most = 2;
    // One network service that refuses nothing, and a clock that can be set.
    auto machine = Machine::server().behaves("ntp-servers-in-use");
    std::map<std::string, unsigned> seen;
    const auto standard = sim::Scenario::standard();
    for (const auto& object : standard.objects())
    {
        if (++seen[kindOf(object)] > most)
        {
            machine.without(object.path);
        }
    }
    return machine;
}

} // namespace morvath::tests
