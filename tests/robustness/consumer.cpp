// SPDX-License-Identifier: Apache-2.0
#include "robustness/exports.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <set>
#include <string>
#include <string_view>

using namespace morvath::tests;

namespace
{

/** Calls every export and prints the results that there were. */
void callAll()
{
    std::set<std::string> results;
    for (const auto& one : allExports())
    {
        results.insert(one.call().result);
    }
    for (const auto& result : results)
    {
        std::cout << result << ' ';
    }
    std::cout << std::endl;
}

void callAllInChild()
{
    const auto child = fork();
    if (child == 0)
    {
        callAll();
        std::exit(EXIT_SUCCESS);
    }
    int status = -1;
    waitpid(child, &status, 0);
    std::cout << "child " << status << std::endl;
}

} // namespace

/**
 * A program that has loaded the library and does what its arguments say, one
 * after the other: call, fork, or a command of the shell.
 */
int main(int argc, char** argv)
{
    for (int index = 1; index < argc; ++index)
    {
        const std::string_view step(argv[index]);
        if (step == "call")
        {
            callAll();
        }
        else if (step == "fork")
        {
            callAllInChild();
        }
        else if (std::system(argv[index]) != 0)
        {
            return EXIT_FAILURE;
        }
    }
    return EXIT_SUCCESS;
}
