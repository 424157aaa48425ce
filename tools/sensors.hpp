// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "options.hpp"

namespace morvath::tools
{

struct SensorOptions
{
    OutputOptions output;
    /** The pause between rounds; absent for a single one. */
    std::optional<std::chrono::duration<double>> watch;
};

/** Prints all sensors that can be read; whether those were all. */
bool showSensors(const SensorOptions& options);

} // namespace morvath::tools
