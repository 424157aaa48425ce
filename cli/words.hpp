// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "cli/program.hpp"

#include <string>
#include <string_view>

namespace morvath::cli
{

/** Says that there is no such thing, and which one was perhaps meant. */
std::string unknown(const std::string& kind, const std::string& word,
                    const Terms& known);

bool isArgument(const Parameter& parameter);

/** The names of a parameter, one by one. */
std::vector<std::string> namesOf(const Parameter& parameter);

// What can be said at a place, with meanings.
Terms commandsOf(const Command& command);
/** Those that no command has to name itself. */
Terms usualOptions(bool isProgram);
Terms optionsOf(const Command& command, bool isProgram);

/** What the value of a parameter is called; empty for a flag. */
std::string valueOf(const Parameter& parameter);

/**
 * What can stand in place of the last of the words after the program's name,
 * as lines of a word, a tab and its meaning. A line that begins with a tab
 * says what else there can be: files, or from the word of that number on
 * another command.
 */
std::string completionOf(const Command& program,
                         const std::vector<std::string>& words);

/** All that the program tells of itself, as JSON for the manual. */
std::string descriptionOf(const Command& program, const About& about);

} // namespace morvath::cli
