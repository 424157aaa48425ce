// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <string>

namespace morvath::sim
{

/** Tells what a recording has to do without, and why. */
using Omit =
    std::function<void(const std::string& what, const std::string& why)>;

/** Masks in a scenario what tells one machine and its place from others. */
void anonymize(nlohmann::ordered_json& scenario);

/** The file name of the module that has the function below. */
constexpr auto raidModule = "morvath-sim-raid.so";

/**
 * Reads what the RAID management library knows; without a RAID manager the
 * section stays as it is. A module of its own has this, so that the program
 * itself runs on a platform without the library.
 */
extern "C" void recordRaid(nlohmann::ordered_json& section, const Omit& omit);

} // namespace morvath::sim
