#pragma once

#include <nlohmann/json.hpp>

namespace morvath::tools
{

/** What is shown: a text, a number, or null for what is missing. */
using Value = nlohmann::ordered_json;

} // namespace morvath::tools
