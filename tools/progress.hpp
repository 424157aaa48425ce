// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace morvath::tools
{

/**
 * Says on standard error, if that is a terminal, what is being read, once
 * readings have taken half a second.
 */
void showProgress(std::string_view what);

/** Takes it back, before anything else is printed. */
void endProgress();

} // namespace morvath::tools
