// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/call_log.hpp"
#include "sim/scenario.hpp"

#include <string>
#include <vector>

namespace morvath::sim
{

/** Blocks the signals that end the program, so that they can be waited for. */
void blockEndSignals();

/** Runs a command on a bus of its own; returns its status as a shell does. */
int runCommand(const Scenario& scenario, const CallSink& sink,
               const std::vector<std::string>& command);

/** Serves on a bus until told to end; empty address: the environment's. */
int serve(const Scenario& scenario, const CallSink& sink,
          const std::string& address);

} // namespace morvath::sim
