// SPDX-License-Identifier: Apache-2.0
#include "command.hpp"

#include <cstdio>
#include <exception>

namespace
{

namespace cli = morvath::cli;
using namespace morvath::tools;

// The exit statuses of the program.
constexpr int complete = 0;
constexpr int incomplete = 1;

/** Text that did not reach its destination is no success. */
bool flushed()
{
    if (std::fflush(stdout) == 0 && !std::ferror(stdout))
    {
        return true;
    }
    std::perror("morvath: standard output");
    return false;
}

cli::About about()
{
    return {
        .name = "morvath",
        .version = MORVATH_VERSION,
        .summary = "Shows what a management controller knows of its platform.",
        .exitStatuses = {{"0", "all was done"},
                         {"1",
                          "something could not be read, changed or written"},
                         {"2", "misuse: nothing was done"}},
        .environment = {{"DBUS_SYSTEM_BUS_ADDRESS",
                         "The bus of the platform, if not the usual one"}},
        .examples = {{"morvath show memory processors", "Two tables"},
                     {"morvath show --all --json", "Everything, for a program"},
                     {"morvath sensors --watch 2",
                      "The sensors, every two seconds"},
                     {"morvath get bmc-version", "One value, for a script"},
                     {"morvath set time-sync manual", "Change a setting"}},
    };
}

int run(int argc, char** argv)
{
    cli::Program program(about());
    Action action;
    addShow(program, action);
    addSensors(program, action);
    addFacts(program, action);
    addGet(program, action);
    addSet(program, action);
    return program.run(argc, argv, [&] {
        const bool done = action();
        return flushed() && done ? complete : incomplete;
    });
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        return run(argc, argv);
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "morvath: %s\n", error.what());
        return incomplete;
    }
}
