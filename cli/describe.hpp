// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "cli/program.hpp"

#include <string>

namespace morvath::cli
{

/** All that the program tells of itself as JSON, for manual and completion. */
std::string describe(const CLI::App& app, const About& about,
                     const Choices& choices);

} // namespace morvath::cli
