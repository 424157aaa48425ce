// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json.hpp"
#include "sim/record/omissions.hpp"

#include <optional>

namespace morvath::sim
{

/** The RAID section of a scenario; nothing without a RAID manager. */
std::optional<Json> recordRaid(Omissions& omissions);

} // namespace morvath::sim
