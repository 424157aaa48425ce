// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace morvath::sim
{

/** The text of scenarios/server.json, built in so that nothing is looked for.
 */
std::string_view defaultScenario();

} // namespace morvath::sim
