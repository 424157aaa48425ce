// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "exposition.hpp"

#include <sys/types.h>

namespace morvath::exporter
{

/** A reader at work. It is gone when this is. */
class Reading
{
  public:
    /** Says on standard error when there can be none; it is over then. */
    Reading(const char* program, Seconds limit);
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;
    ~Reading();

    /** Where it writes to, for polling; negative without a reader. */
    int pipe() const { return output; }

    /** Takes what was written, without waiting; whether more can come. */
    bool receive();

    /** What was written so far. */
    const std::string& text() const { return written; }

    Seconds duration() const;

  private:
    using Clock = std::chrono::steady_clock;

    const Clock::time_point start = Clock::now();
    int output = -1;
    pid_t process = -1;
    std::string written;
};

} // namespace morvath::exporter
