#include "command.hpp"

namespace morvath::tools
{

void addSet(CLI::App& app, Action& chosen)
{
    auto* command = app.add_subcommand("set", "Change a setting");
    command->require_subcommand(1);
    addLldp(*command, chosen);
}

} // namespace morvath::tools
