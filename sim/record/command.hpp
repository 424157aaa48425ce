// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "cli/program.hpp"

#include <chrono>
#include <string>
#include <vector>

namespace morvath::sim
{

struct RecordOptions
{
    /** Empty: all. */
    std::vector<std::string> services;
    /** Empty: the bus of the environment. */
    std::string address;
    std::chrono::duration<double> patience{5};
    bool anonymize = false;
};

/**
 * The command "record", which prints a live platform as a scenario; the
 * options must outlive it.
 */
cli::Command recordCommand(RecordOptions& options);

} // namespace morvath::sim
