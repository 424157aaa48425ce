// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "cli/term.hpp"

#include <functional>
#include <string>
#include <string_view>

namespace morvath::cli
{

/** What a program tells of itself besides its commands. */
struct About
{
    std::string name;
    std::string version;
    std::string summary;
    Terms exitStatuses;
    Terms environment;
    Terms examples;
};

/**
 * A program of commands. Help, manual and completion all come from what is
 * told here and from CLI11's view of the commands.
 */
class Program
{
  public:
    explicit Program(About about);
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    CLI::App& app()
    {
        return app_;
    }

    /** Tells the words that an option takes. It is not checked here. */
    void offer(const CLI::Option* option, Terms choices);

    /** Parses and acts; the exit status, 2 for misuse. */
    int run(int argc, char** argv, const std::function<int()>& action);

  private:
    About about_;
    Choices choices_;
    CLI::App app_;
};

} // namespace morvath::cli
