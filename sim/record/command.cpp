// SPDX-License-Identifier: Apache-2.0
#include "sim/record/command.hpp"

#include "sim/sd_bus.hpp"

namespace morvath::sim
{

namespace
{

cli::Parameter serviceOption(RecordOptions& options)
{
    const auto take = [&options](const std::string& name) {
        if (sd_bus_service_name_is_valid(name.c_str()) <= 0)
        {
            throw cli::Misuse("--service: \"" + name + "\" is not a bus name");
        }
        options.services.push_back(name);
    };
    return {.names = "--service",
            .meaning = "Record only this service; may be repeated",
            .take = take,
            .value = "NAME",
            .isRepeated = true};
}

} // namespace

cli::Command recordCommand(RecordOptions& options)
{
    return {
        .name = "record",
        .meaning = "Print what is on a bus as a scenario",
        .parameters =
            {serviceOption(options),
             cli::flag("--anonymize", options.anonymize,
                       "Mask serial numbers, addresses and names of hosts"),
             cli::seconds("--timeout", options.patience,
                          "Longest wait for each answer, in seconds (5)"),
             cli::text("--address", "ADDRESS", options.address,
                       "The bus (default: the one of the environment)")},
        .run = [&options] { return record(options); },
    };
}

} // namespace morvath::sim
