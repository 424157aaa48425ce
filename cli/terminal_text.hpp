// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

namespace morvath::cli
{

constexpr auto anyWidth = std::numeric_limits<std::size_t>::max();

/** A character and the bytes that it was read from; of one byte if broken. */
struct Character
{
    char32_t code;
    std::string_view bytes;
    bool isBroken = false;
};

/** The first character of a text that is not empty. */
Character firstOf(std::string_view text);

/**
 * A text from outside as a terminal may get it. What could steer a terminal or
 * forge a line becomes a visible escape: control characters, marks of writing
 * direction, separators of lines, characters that nothing shows, and bytes
 * that are not UTF-8. Of a text that is wider, the beginning and a sign.
 */
std::string visible(std::string_view text, std::size_t width = anyWidth);

/** JSON with the same in escapes of its own, so that it says the same. */
std::string visibleJson(std::string_view json);

/** The columns of a terminal that a visible text takes. */
std::size_t widthOf(std::string_view visible);

/** Whether the environment says that terminals show UTF-8. */
bool showsUtf8();

/**
 * Says on standard error, if that is a terminal, what is being read, once
 * readings have taken half a second.
 */
void showProgress(std::string_view what);

/** Takes it back, before anything else is printed. */
void endProgress();

/** Says on standard error what went wrong, whatever the message contains. */
void complain(std::string_view program, std::string_view message);

} // namespace morvath::cli
