// SPDX-License-Identifier: Apache-2.0
#include "value.hpp"

#include <algorithm>

namespace morvath::tools
{
namespace
{

constexpr auto missing = "n/a";

bool isControl(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7f;
}

} // namespace

Value numberIn(const std::string& text)
{
    constexpr auto callback = nullptr;
    constexpr auto raising = false;
    auto number = Value::parse(text, callback, raising);
    return number.is_number() ? number : Value();
}

Value valueOf(char* text)
{
    return text ? Value(text) : Value();
}

Value valueOf(int32_t number)
{
    return number;
}

Value valueOf(uint32_t number)
{
    return number;
}

Value yesOrNo(int32_t flag)
{
    return flag != 0;
}

std::string textOf(const Value& value)
{
    if (value.is_null())
    {
        return missing;
    }
    if (value.is_boolean())
    {
        return value.get<bool>() ? "yes" : "no";
    }
    auto text = value.is_string() ? value.get<std::string>() : value.dump();
    // Whatever a service publishes, it must not steer the terminal.
    std::ranges::replace_if(text, isControl, '?');
    return text;
}

} // namespace morvath::tools
