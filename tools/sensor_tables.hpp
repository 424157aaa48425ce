// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

namespace morvath::tools
{

// Of the columns of a sensor table: where the state is, and how many from the
// first on tell all that matters at a glance.
constexpr std::size_t stateColumn = 3;
constexpr std::size_t overviewColumns = 8;

constexpr auto stateCritical = "critical";
constexpr auto stateWarning = "warning";
constexpr auto stateNoReading = "no reading";
constexpr auto stateNoLimits = "no limits";
constexpr auto stateOk = "ok";

} // namespace morvath::tools
