#include "value.hpp"

namespace morvath::tools
{

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

} // namespace morvath::tools
