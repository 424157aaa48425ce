// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json.hpp>

namespace morvath::sim
{

/** Keeps the order of keys: interfaces and properties are published in it. */
using Json = nlohmann::ordered_json;

} // namespace morvath::sim
