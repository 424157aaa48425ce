// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace morvath
{

/**
 * The last segment of an object path, as programs on the platform read it: one
 * that begins with "_" is decoded.
 */
std::string lastSegment(std::string_view path);

} // namespace morvath
