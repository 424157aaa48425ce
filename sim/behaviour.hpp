// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string_view>

namespace morvath::sim
{

/** What services do with a setting beyond keeping it; a scenario chooses. */
enum class Behaviour
{
    hostPower,
    ntpKeepsClock,
    ntpServersInUse,
};

/** The behaviour that scenarios call so. */
std::optional<Behaviour> behaviourOf(std::string_view name);

} // namespace morvath::sim
