// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace morvath::sim
{

bool isBasicType(char type);

/** Whether the text is exactly one complete D-Bus type. */
bool isCompleteType(std::string_view text);

/** Whether the text is a D-Bus signature: any number of complete types. */
bool isSignature(std::string_view text);

/** The complete type that a valid signature begins with. */
std::string_view firstType(std::string_view signature);

} // namespace morvath::sim
