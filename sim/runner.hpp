// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/call_log.hpp"
#include "sim/daemon.hpp"

#include <string>
#include <vector>

namespace morvath::sim
{

struct Scenario;

struct RunOptions
{
    /** Receives the calls with their outcomes; empty: nobody. */
    CallSink log;
    /** Whether a fault that no call has met fails the run. */
    bool strict = false;
    BusProgram bus = BusProgram::daemon;
};

/** Blocks the signals that end the program, so that they can be waited for. */
void blockEndSignals();

/** Runs a command on a bus of its own; returns its status as a shell does. */
int runCommand(const Scenario& scenario, const RunOptions& options,
               const std::vector<std::string>& command);

/** Serves on a bus until told to end; empty address: the environment's. */
int serve(const Scenario& scenario, const RunOptions& options,
          const std::string& address);

} // namespace morvath::sim
