// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace morvath
{

// What the platform's enumeration values are without a dot. The two differ on
// purpose: callers know both.
constexpr std::string_view unknownWord = "Unknown";
constexpr std::string_view unknownUnit = "unknown";

/** What follows the last dot of a text, or the word for one without a dot. */
std::string_view lastPart(std::string_view text, std::string_view otherwise);

} // namespace morvath
