// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/process.hpp"
#include "sim/service.hpp"

#include <string>
#include <vector>

namespace morvath::sim
{

constexpr auto programName = "morvath-sim";

/**
 * A private message bus. It ends with the object, or with the thread that
 * made the object, however that one ends; it leaves no files.
 */
class Daemon
{
  public:
    /** @param[in] isBroker  dbus-broker in place of dbus-daemon */
    explicit Daemon(bool isBroker = false);

    const std::string& address() const noexcept { return busAddress; }

  private:
    const std::string busAddress;
    const MemoryFile configuration;
    /** The program also warns of harmless things. */
    const MemoryFile messages;
    const Process process;
};

struct RunOptions
{
    /** Receives the calls with their outcomes; empty: nobody. */
    CallSink log;
    /** Whether a fault that no call has met fails the run. */
    bool strict = false;
    bool usesBroker = false;
};

/** Runs a command on a bus of its own; returns its status as a shell does. */
int runCommand(const Scenario& scenario, const RunOptions& options,
               const std::vector<std::string>& command);

/** Serves on a bus until told to end; empty address: the environment's. */
int serve(const Scenario& scenario, const RunOptions& options,
          const std::string& address);

} // namespace morvath::sim
