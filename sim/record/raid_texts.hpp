// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json.hpp"
#include "sim/record/vontel_library.hpp"

#include <string>

namespace morvath::sim
{

/** What the operations of the library want first. */
constexpr std::uint8_t selector = 0;

/** The text itself. @throws std::runtime_error  JSON cannot hold it */
const std::string& checkedText(const std::string& text);

/** Adds what the library knows of the identifiers of a controller. */
void addConfiguration(Json& configuration, const VontelLibrary& library,
                      const vontel::RAIDInfo_T& info);

/** The texts of all codes. */
Json recordTexts(const VontelLibrary& library);

} // namespace morvath::sim
