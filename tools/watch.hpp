// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace morvath::tools
{

/**
 * Runs rounds with a pause after each, until SIGINT or SIGTERM ends the
 * program with success. Returns only when standard output is lost.
 */
void watch(std::chrono::duration<double> pause,
           const std::function<void()>& round);

/** Prints a text that SIGINT and SIGTERM cannot cut off. */
void printWhole(const std::string& text);

} // namespace morvath::tools
