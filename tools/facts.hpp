// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "fact.hpp"

#include <span>
#include <string_view>
#include <vector>

namespace morvath::tools
{

// The facts by subject.
std::span<const Fact> identityFacts();
std::span<const Fact> settingFacts();

/** All facts, in the order in which they are listed. */
const std::vector<Fact>& facts();

/** The fact of that name, or null. */
const Fact* findFact(std::string_view name);

} // namespace morvath::tools
