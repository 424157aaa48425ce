// SPDX-License-Identifier: Apache-2.0
#include "base/last_part.hpp"

#include "morvath.h"

namespace morvath
{

std::string_view lastPart(std::string_view text, std::string_view otherwise)
{
    const auto dot = text.rfind('.');
    return dot == text.npos ? otherwise : text.substr(dot + 1);
}

} // namespace morvath

std::string getLastStr(const std::string& text)
{
    return std::string(morvath::lastPart(text, morvath::unknownWord));
}
