// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace morvath::tools
{

/** What is shown: a text, a number, yes or no, or null for what is missing. */
using Value = nlohmann::ordered_json;

/** The number that a text is, or null. */
Value numberIn(const std::string& text);

// From the fields of the library's records.
Value valueOf(char* text);
Value valueOf(int32_t number);
Value valueOf(uint32_t number);

/** Yes or no, for a field that is 1 or 0. */
Value yesOrNo(int32_t flag);

/** A value for people. */
std::string textOf(const Value& value);

} // namespace morvath::tools
