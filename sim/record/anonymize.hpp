// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json_fwd.hpp>

namespace morvath::sim
{

/** Masks in a scenario what tells one machine and its place from others. */
void anonymize(nlohmann::ordered_json& scenario);

} // namespace morvath::sim
