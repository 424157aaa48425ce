// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "cli/program.hpp"
#include "sim/record/record.hpp"

namespace morvath::sim
{

/** The command "record"; the options must outlive it. */
cli::Command recordCommand(RecordOptions& options);

} // namespace morvath::sim
