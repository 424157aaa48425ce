// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json_cursor.hpp"
#include "sim/value.hpp"

#include <string_view>

namespace morvath::sim
{

/** Reads a value of the given complete type; anything else is an error. */
Value valueFromJson(std::string_view type, const JsonCursor& json);

/** Reads the "type" and the "value" of an object, which may have more keys. */
Value typedValueFromJson(const JsonCursor& json);

} // namespace morvath::sim
