// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "options.hpp"
#include "report.hpp"

#include <vector>

namespace morvath::tools
{

struct ShowOptions
{
    std::vector<const Table*> tables;
    Absence absence = Absence::failure;
    OutputOptions output;
};

/** Prints the tables that can be read; whether those were all. */
bool show(const ShowOptions& options);

} // namespace morvath::tools
