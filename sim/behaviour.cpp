// SPDX-License-Identifier: Apache-2.0
#include "sim/behaviour.hpp"

#include <algorithm>
#include <array>

namespace morvath::sim
{

namespace
{

struct NamedBehaviour
{
    std::string_view name;
    Behaviour behaviour;
};

constexpr std::array behaviours{
    NamedBehaviour{"host-power", Behaviour::hostPower},
    NamedBehaviour{"ntp-keeps-clock", Behaviour::ntpKeepsClock},
    NamedBehaviour{"ntp-servers-in-use", Behaviour::ntpServersInUse},
};

} // namespace

std::optional<Behaviour> behaviourOf(std::string_view name)
{
    const auto found =
        std::ranges::find(behaviours, name, &NamedBehaviour::name);
    if (found == behaviours.end())
    {
        return std::nullopt;
    }
    return found->behaviour;
}

} // namespace morvath::sim
