// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json.hpp"

namespace morvath::sim
{

/**
 * The interfaces in the order in which their service registered them. Only
 * its answer to a GetAll of all interfaces at once shows it, where the last
 * one comes first. Without a sensible answer the order stays.
 * @param[in] together  the answer, a list of [NAME, PROPERTY]
 */
Json inRegistrationOrder(const Json& interfaces, const Json& together);

} // namespace morvath::sim
