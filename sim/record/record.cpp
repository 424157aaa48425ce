// SPDX-License-Identifier: Apache-2.0
#include "sim/record/record.hpp"

#include "sim/record/anonymize.hpp"
#include "sim/record/layout.hpp"
#include "sim/record/object_recorder.hpp"
#include "sim/record/raid_recorder.hpp"
#include "sim/scenario.hpp"

#include <cstdio>
#include <cstdlib>

namespace morvath::sim
{

namespace
{

MappedObjects askMapper(BusReader& reader)
{
    try
    {
        return reader.mappedObjects();
    }
    catch (const std::exception& error)
    {
        throw std::runtime_error("the object mapper cannot be asked: " +
                                 std::string(error.what()));
    }
}

Json recordScenario(const RecordOptions& options, Omissions& omissions)
{
    BusReader reader(options.address,
                     std::chrono::duration_cast<std::chrono::microseconds>(
                         options.patience));
    const MappedObjects objects = askMapper(reader);
    Json scenario{{"format", 1},
                  {"description", "Recorded from a running platform"}};
    scenario["objects"] = ObjectRecorder(reader, omissions)
                              .record(objects, {options.services.begin(),
                                                options.services.end()});
    // The manager of drives is no service that could be chosen.
    if (options.services.empty())
    {
        if (auto raid = recordRaid(omissions))
        {
            scenario["raid"] = *std::move(raid);
        }
    }
    return scenario;
}

/** What is printed is meant to be replayed. */
void checkReplay(const std::string& text, Omissions& omissions)
{
    try
    {
        Scenario::parse(text, "the recording");
    }
    catch (const ScenarioError& error)
    {
        omissions.tell("a correct scenario", error.what());
    }
}

} // namespace

int record(const RecordOptions& options)
{
    Omissions omissions;
    Json scenario = recordScenario(options, omissions);
    if (options.anonymize)
    {
        scenario = anonymized(scenario);
    }
    const std::string text = laidOut(scenario);
    checkReplay(text, omissions);
    const bool isWritten =
        std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
    if (!isWritten)
    {
        throw std::runtime_error("the recording could not be written");
    }
    return omissions.any() ? EXIT_FAILURE : EXIT_SUCCESS;
}

} // namespace morvath::sim
