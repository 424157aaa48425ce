// SPDX-License-Identifier: Apache-2.0
#include "cli/terminal_text.hpp"
#include "command.hpp"

#include <cstdio>
#include <exception>
#include <utility>

using namespace morvath::tools;
namespace cli = morvath::cli;

namespace morvath::tools
{

cli::Parameter timeoutOption()
{
    return cli::seconds("--timeout", answerLimit(),
                        "Longest wait for each answer, in seconds (25)");
}

} // namespace morvath::tools

namespace
{

cli::Command program()
{
    auto overview = overviewCommand();
    const auto runOverview = overview.run;
    return {
        .name = "morvath",
        .meaning = "Shows what a management controller knows of its platform.",
        .run = runOverview,
        .commands = {std::move(overview), showCommand(), sensorsCommand(),
                     factsCommand(), getCommand(), setCommand(),
                     metricsCommand()},
    };
}

cli::About about()
{
    return {
        .version = MORVATH_VERSION,
        .exitStatuses = {{"0", "all was done"},
                         {"1",
                          "something could not be read, changed or written"},
                         {"2", "misuse: nothing was done"},
                         {"3", "with --check, a sensor is critical"},
                         {"4", "with --check, a sensor has a warning"}},
        .environment = {{"DBUS_SYSTEM_BUS_ADDRESS",
                         "The bus of the platform, if not the usual one"},
                        {"NO_COLOR", "Nothing is coloured unless --color says "
                                     "so"}},
        .examples = {{"morvath", "What matters, in some 15 lines"},
                     {"morvath show memory processors", "Two tables"},
                     {"morvath show --all --json", "Everything, for a program"},
                     {"morvath sensors --watch 2",
                      "The sensors, every two seconds"},
                     {"morvath get bmc-version", "One value, for a script"},
                     {"morvath set time-sync manual", "Change a setting"},
                     {"morvath metrics >FILE.prom",
                      "All readings, for Prometheus"}},
    };
}

/** Text that did not reach its destination is a failure. */
int flushed(int status)
{
    if (std::fflush(stdout) == 0 && !std::ferror(stdout))
    {
        return status;
    }
    std::perror("morvath: standard output");
    return status == complete ? incomplete : status;
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        return flushed(cli::run(program(), about(), argc, argv));
    }
    catch (const std::exception& error)
    {
        cli::complain("morvath", error.what());
        return incomplete;
    }
}
