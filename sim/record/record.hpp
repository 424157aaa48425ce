// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace morvath::sim
{

struct RecordOptions
{
    /** Empty: all. */
    std::vector<std::string> services;
    /** Empty: the bus of the environment. */
    std::string address;
    std::chrono::duration<double> patience{5};
    bool anonymize = false;
};

/**
 * Prints a live platform as a scenario.
 * @return the status: success when nothing had to be left out
 * @throws std::exception  there is no platform; nothing is printed then
 */
int record(const RecordOptions& options);

} // namespace morvath::sim
