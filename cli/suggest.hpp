// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "cli/term.hpp"

#include <string>

namespace morvath::cli
{

/** Says that there is no such thing, and which one was perhaps meant. */
std::string unknown(const std::string& kind, const std::string& word,
                    const Terms& known);

/** The message for a misuse; tells the unknown word from what is missing. */
std::string explain(const CLI::App& app, const CLI::ParseError& error);

} // namespace morvath::cli
