// SPDX-License-Identifier: Apache-2.0
#include "robustness/exports.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
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
        std::printf("%s ", result.c_str());
    }
    std::puts("");
    std::fflush(stdout);
}

void callAllInChild()
{
    if (const auto child = fork())
    {
        int status = -1;
        waitpid(child, &status, 0);
        std::printf("child %d\n", status);
        return;
    }
    callAll();
    std::exit(EXIT_SUCCESS);
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
