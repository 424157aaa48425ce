// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/object_tree.hpp"

#include <string>
#include <string_view>

namespace morvath::sim
{

/**
 * The XML that describes a node.
 * @param[in] methods  an interface description to insert, may be empty
 */
std::string introspectionXml(const Node& node, std::string_view methods);

} // namespace morvath::sim
