// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/resource.h>
#include <sys/types.h>

#include <cstdio>
#include <string>

namespace morvath::tests
{

/** The command while it runs; what it says must come within a minute. */
class Running
{
  public:
    explicit Running(const std::string& arguments,
                     const std::string& environment = {});
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    ~Running();

    /** The next line of either output; empty at the end. */
    std::string line();

    /** Whether there comes a line with such a text. */
    bool says(std::string_view text);

    pid_t id() const { return process; }

    /** Waits for the end; success is expected. */
    rusage end();

  private:
    pid_t process;
    FILE* output;
};

} // namespace morvath::tests
