#include "command.hpp"

namespace morvath::tools
{

void addSet(CLI::App& app, Action& chosen)
{
    auto* command = app.add_subcommand("set", "Change a setting");
    addFactSettings(*command, chosen);
    addLldp(*command, chosen);

    // What is no setting would otherwise only be called missing.
    command->allow_extras();
    command->callback([command] {
        if (!command->get_subcommands().empty())
        {
            return;
        }
        const auto words = command->remaining();
        if (words.empty())
        {
            throw CLI::RequiredError("a setting");
        }
        throw CLI::ValidationError("set", words.front() + " cannot be set");
    });
}

} // namespace morvath::tools
