// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bus.hpp"
#include "cli/program.hpp"
#include "facts.hpp"

#include <optional>

namespace morvath::tools
{

// The exit statuses of the program, besides that of misuse.
constexpr int complete = 0;
constexpr int incomplete = 1;
// For scripts that want to know.
constexpr int critical = 3;
constexpr int warning = 4;

// The commands of the program.
cli::Command factsCommand();
cli::Command getCommand();
cli::Command metricsCommand();
cli::Command overviewCommand();
cli::Command sensorsCommand();
cli::Command setCommand();
cli::Command showCommand();

/** The longest wait for an answer. */
cli::Parameter timeoutOption();

// One document, whatever could be read; what failed as a whole is null in it.
std::string jsonOf(const std::vector<TableReading>& tables, bool inOneLine);
std::string jsonOf(const std::vector<FactReading>& facts);

/** Comma-separated values after a line with the keys of the columns. */
std::string csvOf(Columns columns, const std::vector<Cells>& rows,
                  bool withTitles);

/** The name of this machine. */
std::string hostName();

} // namespace morvath::tools
