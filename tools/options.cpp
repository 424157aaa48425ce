// SPDX-License-Identifier: Apache-2.0
#include "options.hpp"

namespace morvath::tools
{
namespace
{

constexpr double shortestWait = 0.001;
constexpr double longestWait = 24 * 60 * 60;

} // namespace

void addOutputOptions(CLI::App& command, OutputOptions& options)
{
    command.add_flag("--json", options.asJson,
                     "Print one JSON document instead of text");
    command.add_flag_callback(
        "--no-legend", [&options] { options.withTitles = false; },
        "Leave out the titles");
    addTimeout(command, options.timeout);
}

void addTimeout(CLI::App& command, std::optional<Timeout>& timeout)
{
    command
        .add_option("--timeout", timeout,
                    "Longest wait for each answer, in seconds (25)")
        ->type_name("SECONDS")
        ->check(waitingTime());
}

CLI::Range waitingTime()
{
    return CLI::Range(shortestWait, longestWait);
}

} // namespace morvath::tools
