// SPDX-License-Identifier: Apache-2.0
#include "sim/record/command.hpp"

#include "sim/sd_bus.hpp"

namespace morvath::sim
{

// sd-bus counts microseconds, and nobody waits for a day.
constexpr double shortestWait = 0.001;
constexpr double longestWait = 86400;

namespace
{

std::string serviceNameError(const std::string& name)
{
    return sd_bus_service_name_is_valid(name.c_str()) > 0
               ? ""
               : "\"" + name + "\" is not a bus name";
}

} // namespace

CLI::App* addRecordCommand(CLI::App& app, RecordOptions& options)
{
    CLI::App* command =
        app.add_subcommand("record", "Print what is on a bus as a scenario");
    command
        ->add_option("--service", options.services,
                     "Record only this service; may be repeated")
        ->type_name("NAME")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->check(serviceNameError);
    command->add_flag("--anonymize", options.anonymize,
                      "Mask serial numbers, addresses and names of hosts");
    command
        ->add_option("--timeout", options.patience,
                     "Longest wait for each answer, in seconds (5)")
        ->type_name("SECONDS")
        ->check(CLI::Range(shortestWait, longestWait));
    command
        ->add_option("--address", options.address,
                     "The bus (default: the one of the environment)")
        ->type_name("ADDRESS");
    return command;
}

} // namespace morvath::sim
