// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/record/record.hpp"

#include <CLI/CLI.hpp>

namespace morvath::sim
{

/** Adds the subcommand; the options must outlive the parsing. */
CLI::App* addRecordCommand(CLI::App& app, RecordOptions& options);

} // namespace morvath::sim
