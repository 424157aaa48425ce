// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <string>
#include <utility>
#include <vector>

namespace morvath::sim
{

struct ProcessOptions
{
    /** Added to our own environment, or instead of what it has there. */
    std::vector<std::pair<std::string, std::string>> environment;
    /** Descriptors to use as standard output and error; -1 keeps ours. */
    int output = -1;
    int error = -1;
    /** A descriptor to keep open under its number; -1 for none. */
    int inherited = -1;
    /** Away from the terminal, so that its signals do not get there. */
    bool ownSession = false;
    /** The signal that it gets when the thread that starts it ends. */
    int deathSignal;
};

/** A child process; killed and reaped with the object. */
class Process
{
  public:
    /** Throws std::system_error when the program cannot be started. */
    Process(const std::vector<std::string>& command,
            const ProcessOptions& options);
    ~Process();

    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    void send(int signal) const;

    /** Whether it has ended; then its status is there. Does not wait. */
    bool hasEnded();

    /** The status as a shell shows it. */
    int exitStatus() const;

  private:
    pid_t pid_;
    int status_ = 0;
};

} // namespace morvath::sim
