// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "exposition.hpp"

#include <span>
#include <string_view>

namespace morvath::tools
{

/** What is read together, and fails together. */
struct MetricTable
{
    /** A label; published, never changed. */
    std::string_view name;
    /** Raises std::exception when it cannot be read; nothing is added then. */
    void (*read)(std::string_view name, Exposition& exposition);
};

/** All, in the order in which they are read. */
std::span<const MetricTable> metricTables();

} // namespace morvath::tools
