// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "screen.hpp"

#include <functional>
#include <string>
#include <vector>

namespace morvath::tools
{

/**
 * Runs rounds with a pause after each, until SIGINT or SIGTERM ends the
 * program with success. A round that raises is told. Returns only when
 * standard output is lost.
 */
void watch(cli::Seconds pause, const std::function<void()>& round);

/** Prints a text that SIGINT and SIGTERM cannot cut off. */
void printWhole(const std::string& text);

/** The lines in place of those before, as many as the window has. */
std::string repainted(std::vector<std::string> lines, const Look& look);

} // namespace morvath::tools
