// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json.hpp"

namespace morvath::sim
{

/** The scenario without what tells one machine and its place from others. */
Json anonymized(const Json& scenario);

} // namespace morvath::sim
