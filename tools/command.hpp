// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "cli/program.hpp"

#include <functional>

namespace morvath::tools
{

/** What a command does when it was chosen; whether it could do all of it. */
using Action = std::function<bool()>;

// Each adds one command to the program; the one chosen sets the action.
void addFacts(cli::Program& program, Action& chosen);
void addGet(cli::Program& program, Action& chosen);
void addSensors(cli::Program& program, Action& chosen);
void addSet(cli::Program& program, Action& chosen);
void addShow(cli::Program& program, Action& chosen);

// Each adds one kind of thing to the command that sets things.
void addLldp(cli::Program& program, CLI::App& setCommand, Action& chosen);
void addFactSettings(cli::Program& program, CLI::App& setCommand,
                     Action& chosen);

} // namespace morvath::tools
