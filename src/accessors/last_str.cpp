// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"

std::string getLastStr(const std::string& text)
{
    const auto dot = text.rfind('.');
    return dot == std::string::npos ? "Unknown" : text.substr(dot + 1);
}
