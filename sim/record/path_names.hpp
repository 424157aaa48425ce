// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace morvath::sim
{

/** A name as a segment of an object path, as the platform's binding does it. */
std::string encodedName(std::string_view name);

/** The reverse; nothing for a segment that is no such code. */
std::optional<std::string> decodedName(std::string_view segment);

} // namespace morvath::sim
