// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json.hpp"
#include "sim/record/mask_rules.hpp"

#include <functional>
#include <string>

namespace morvath::sim
{

/** Gives the text that takes the place of one; the rule may be nullptr. */
using TextChange =
    std::function<std::string(const NameRule* rule, const std::string& text)>;

/**
 * The scenario with every text changed that describes the machine: paths,
 * values, keys inside of values, and the RAID section. Names of services,
 * interfaces and properties stay.
 */
Json withTexts(const Json& scenario, const TextChange& change);

} // namespace morvath::sim
