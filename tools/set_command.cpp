// SPDX-License-Identifier: Apache-2.0
#include "command.hpp"
#include "facts.hpp"

namespace morvath::tools
{

void addSet(cli::Program& program, Action& chosen)
{
    auto* command = program.app().add_subcommand("set", "Change a setting");
    addFactSettings(program, *command, chosen);
    addLldp(program, *command, chosen);

    // So that a fact which is no setting is not called unknown.
    command->allow_extras();
    command->callback([command] {
        if (!command->get_subcommands().empty())
        {
            return;
        }
        const auto words = command->remaining();
        if (!words.empty() && findFact(words.front()))
        {
            throw CLI::ValidationError(words.front() + " cannot be set");
        }
        throw CLI::RequiredError("a setting");
    });
}

} // namespace morvath::tools
