// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "connection.hpp"
#include "fact.hpp"

#include <optional>
#include <vector>

namespace morvath::tools
{

struct GetOptions
{
    std::vector<const Fact*> facts;
    /** Whatever there is: what the platform does not have is no failure. */
    bool all = false;
    bool asJson = false;
    std::optional<Timeout> timeout;
};

/** Prints the facts that can be read; whether those were all. */
bool get(const GetOptions& options);

} // namespace morvath::tools
