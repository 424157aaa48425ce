// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "connection.hpp"

#include <CLI/CLI.hpp>

#include <optional>

namespace morvath::tools
{

/** What all commands that print tables take. */
struct OutputOptions
{
    bool asJson = false;
    bool withTitles = true;
    std::optional<Timeout> timeout;
};

/** The options must outlive the parsing. */
void addOutputOptions(CLI::App& command, OutputOptions& options);

/** The longest wait for an answer, as an option of a command. */
void addTimeout(CLI::App& command, std::optional<Timeout>& timeout);

/** Whether a number of seconds is one that can be waited. */
CLI::Range waitingTime();

} // namespace morvath::tools
