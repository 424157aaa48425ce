// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/object_tree.hpp"

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace morvath::sim
{

constexpr std::string_view associationDefinitions =
    "xyz.openbmc_project.Association.Definitions";

/** The association objects by path, each with its endpoints. */
using Associations = std::map<std::string, std::vector<std::string>>;

/**
 * Adds what the definitions of one service ask for. An association waits
 * until the object at its other end exists.
 */
void addAssociations(Associations& associations, const ObjectTree& objects,
                     const std::function<bool(std::string_view)>& exists);

} // namespace morvath::sim
