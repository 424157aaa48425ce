// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "support/machine.hpp"

namespace morvath::tests
{

/**
 * The default server with two objects of a kind at most, so that a loop over
 * all calls stays short. All that an export can ask for succeeds on it.
 */
Machine smallServer();

} // namespace morvath::tests
