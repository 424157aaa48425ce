// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace morvath::tests
{

struct Outcome
{
    int status;
    std::string output;
    std::string errors;
};

/**
 * Runs a program in a shell. The last word of the command is the name of the
 * environment variable that says how to run it here.
 */
Outcome run(std::string command, const std::string& arguments);

inline Outcome morvath(const std::string& arguments)
{
    return run("MORVATH", arguments);
}

} // namespace morvath::tests
