// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cctype>

namespace morvath::sim
{

inline bool isHexadecimal(char character)
{
    return std::isxdigit(static_cast<unsigned char>(character)) != 0;
}

inline bool isAlphanumeric(char character)
{
    return std::isalnum(static_cast<unsigned char>(character)) != 0;
}

} // namespace morvath::sim
