// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "cli/program.hpp"

#include <nlohmann/json_fwd.hpp>

#include <chrono>
#include <functional>
#include <set>
#include <string>

namespace morvath::sim
{

/** The command "record", which prints a live platform as a scenario. */
cli::Command recordCommand();

struct RecordOptions
{
    /** Empty: all. */
    std::set<std::string> services;
    /** Empty: the bus of the environment. */
    std::string address;
    std::chrono::duration<double, std::micro> patience{5'000'000};
    bool anonymize = false;
};

/** Tells what a recording has to do without, and why. */
using Omit =
    std::function<void(const std::string& what, const std::string& why)>;

/** Turns a live platform into the objects of a scenario. */
nlohmann::ordered_json recordObjects(const RecordOptions& options,
                                     const Omit& omit);

/** Masks in a scenario what tells one machine and its place from others. */
void anonymize(nlohmann::ordered_json& scenario);

/**
 * Adds what the RAID management library knows, if there is a RAID manager. A
 * module of its own has this, so that the program itself runs on a platform
 * without the library.
 */
extern "C" void recordRaid(nlohmann::ordered_json& scenario, const Omit& omit);

} // namespace morvath::sim
