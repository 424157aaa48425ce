// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json.hpp"

#include <string>

namespace morvath::sim
{

/** A scenario as text: a line for every interface and for every drive. */
std::string laidOut(const Json& scenario);

} // namespace morvath::sim
