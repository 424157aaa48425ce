#pragma once

#include <CLI/CLI.hpp>

#include <functional>

namespace morvath::tools
{

/** What a command does when it was chosen; whether it could do all of it. */
using Action = std::function<bool()>;

// Each adds one command to the program; the one chosen sets the action.
void addFacts(CLI::App& app, Action& chosen);
void addGet(CLI::App& app, Action& chosen);
void addSensors(CLI::App& app, Action& chosen);
void addSet(CLI::App& app, Action& chosen);
void addShow(CLI::App& app, Action& chosen);

// Each adds one kind of thing to the command that sets things.
void addLldp(CLI::App& setCommand, Action& chosen);
void addFactSettings(CLI::App& setCommand, Action& chosen);

} // namespace morvath::tools
