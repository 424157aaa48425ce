// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace morvath
{

[[noreturn]] void raiseMissing();

/**
 * What must not be null: a text that a caller passes, or a cell that has to be
 * converted. A null raises std::logic_error, with the text that callers know
 * from the standard library.
 */
template <typename T>
T* required(T* pointer)
{
    return pointer ? pointer : (raiseMissing(), pointer);
}

// What the platform's enumeration values are without a dot. The two differ on
// purpose: callers know both.
constexpr std::string_view unknownWord = "Unknown";
constexpr std::string_view unknownUnit = "unknown";

/** What follows the last dot of a text, or the word for one without a dot. */
std::string_view lastPart(std::string_view text, std::string_view otherwise);

/**
 * The last segment of an object path, as programs on the platform read it: one
 * that begins with "_" is decoded.
 */
std::string lastSegment(std::string_view path);

} // namespace morvath
