// SPDX-License-Identifier: Apache-2.0
#include "cli/terminal_text.hpp"
#include "sim/json_value.hpp"
#include "sim/record/record.hpp"
#include "sim/runner.hpp"
#include "sim/scenario.hpp"

#include <dlfcn.h>

#include <nlohmann/json.hpp>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

namespace morvath::sim
{
namespace
{

/** Adds the RAID section, if there is something to record. */
void addRaid(Json& scenario, const Omit& omit)
{
    // It stays, as an exception of the library's own would need it.
    if (auto* module = dlopen("morvath-sim-raid.so", RTLD_NOW | RTLD_NODELETE))
    {
        const auto add = reinterpret_cast<decltype(&recordRaid)>(
            dlsym(module, "recordRaid"));
        return add(scenario, omit);
    }
    const std::string error = dlerror();
    const auto isWithoutLibrary =
        error.starts_with("libvontel.so.0: cannot open") &&
        error.ends_with("No such file or directory");
    if (!isWithoutLibrary)
    {
        omit("RAID", error);
    }
}

/** Prints a scenario; success when nothing had to be left out. */
int record(const RecordOptions& options)
{
    auto status = EXIT_SUCCESS;
    const Omit omit = [&](const std::string& what, const std::string& why) {
        status = EXIT_FAILURE;
        cli::complain(programName, "left out: " + what + ": " + why);
    };
    Json scenario{{"format", 1},
                  {"description", "Recorded from a running platform"},
                  {"objects", recordObjects(options, omit)}};
    // The manager of drives is not a service that could be chosen.
    if (options.services.empty())
    {
        addRaid(scenario, omit);
    }
    if (options.anonymize)
    {
        anonymize(scenario);
    }
    const auto text = cli::visibleJson(scenario.dump(2));
    try
    {
        // What is printed is meant to be replayed.
        Scenario::parse(text, "the recording");
    }
    catch (const ScenarioError& error)
    {
        omit("a correct scenario", error.what());
    }
    cli::endProgress();
    std::puts(text.c_str());
    return status;
}

} // namespace

cli::Command recordCommand()
{
    const auto options = std::make_shared<RecordOptions>();
    const auto takeService = [options](const std::string& name) {
        if (sd_bus_service_name_is_valid(name.c_str()) <= 0)
        {
            throw cli::Misuse("--service: \"" + name + "\" is not a bus name");
        }
        options->services.insert(name);
    };
    return {
        .name = "record",
        .meaning = "Print what is on a bus as a scenario",
        .parameters =
            {{.names = "--service",
              .meaning = "Record only this service; may be repeated",
              .take = takeService,
              .value = "NAME",
              .isRepeated = true},
             cli::flag("--anonymize", options->anonymize,
                       "Mask serial numbers, addresses and names of hosts"),
             cli::seconds("--timeout", options->patience,
                          "Longest wait for each answer, in seconds (5)"),
             cli::text("--address", "ADDRESS", options->address,
                       "The bus (default: the one of the environment)")},
        .run = [options] { return record(*options); },
    };
}

} // namespace morvath::sim
