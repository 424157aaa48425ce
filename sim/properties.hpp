// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/fault_table.hpp"
#include "sim/object_tree.hpp"
#include "sim/request.hpp"

namespace morvath::sim
{

/** The three calls of the properties interface, as sd-bus answers them. */
Message getProperty(const Request& request, Node& node,
                    const MissingProperties& missing);
Message getAllProperties(const Request& request, const Node& node,
                         const MissingProperties& missing);

/**
 * The property that a Set call may change to the value it carries; refuses
 * with BusError.
 */
Property& settableProperty(const Request& request, Node& node,
                           const MissingProperties& missing);

/** The value inside the variant that a checked Set call carries. */
const Value& newValue(const Request& request);

} // namespace morvath::sim
