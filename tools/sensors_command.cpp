// SPDX-License-Identifier: Apache-2.0
#include "command.hpp"
#include "sensors.hpp"

#include <memory>

namespace morvath::tools
{

void addSensors(cli::Program& program, Action& chosen)
{
    auto* command = program.app().add_subcommand(
        "sensors", "Print all sensors and their state");
    const auto options = std::make_shared<SensorOptions>();
    command->callback([&chosen, options] {
        chosen = [options] { return showSensors(*options); };
    });
    command->footer(
        "States: ok, warning, critical, no reading, and no limits for a "
        "sensor\nthat has none.");
    addOutputOptions(*command, options->output);
    command
        ->add_option("--watch", options->watch,
                     "Repeat with this pause, each JSON in one line")
        ->type_name("SECONDS")
        ->check(waitingTime());
}

} // namespace morvath::tools
