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
    /** Says on standard error why there cannot be one; it is over then. */
    Reading(const char* program, Seconds limit);
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;
    ~Reading();

    /** To learn when it ends; negative without a reader. */
    pid_t process() const { return reader; }

    /** What was written so far. */
    std::string text() const;

    Seconds duration() const;

  private:
    using Clock = std::chrono::steady_clock;

    const Clock::time_point start = Clock::now();
    /** In memory: unlike a pipe it does not wake us for every table. */
    int output = -1;
    pid_t reader = -1;
};

} // namespace morvath::exporter
