// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/scenario.hpp"

namespace morvath::sim
{

/** Reads one entry of the objects of a scenario. */
Object objectFromJson(const JsonCursor& json);

} // namespace morvath::sim
