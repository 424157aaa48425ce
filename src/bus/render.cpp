// SPDX-License-Identifier: Apache-2.0
#include "bus/render.hpp"

#include <systemd/sd-bus.h>

#include <array>
#include <charconv>
#include <limits>

namespace morvath
{
namespace
{

constexpr int decimals = 2;

// The longest text is that of the lowest double: sign, digits, point, decimals
// and the terminator.
constexpr std::size_t longestNumber =
    1 + std::numeric_limits<double>::max_exponent10 + 1 + 1 + decimals + 1;

template <typename Number, typename... Format>
CText renderNumber(Number value, Format... format)
{
    std::array<char, longestNumber> text;
    *std::to_chars(text.begin(), text.end(), value, format...).ptr = '\0';
    return copyText(text.data());
}

} // namespace

CText renderPropertyValue(const BasicValue& value)
{
    switch (value.type)
    {
        case SD_BUS_TYPE_STRING:
            return copyText(value.text);
        case SD_BUS_TYPE_INT64:
            return renderNumber(value.int64);
        case SD_BUS_TYPE_UINT64:
            return renderNumber(value.uint64);
        case SD_BUS_TYPE_DOUBLE:
            return renderNumber(value.real, std::chars_format::fixed, decimals);
        case SD_BUS_TYPE_INT32:
            return renderNumber(value.int32);
        case SD_BUS_TYPE_UINT32:
            return renderNumber(value.uint32);
        case SD_BUS_TYPE_UINT16:
            return renderNumber(value.uint16);
        case SD_BUS_TYPE_BYTE:
            return renderNumber(value.byte);
        case SD_BUS_TYPE_BOOLEAN:
            return copyText(value.boolean ? "1" : "0");
        default:
            // Lists and, unlike its unsigned neighbour, the signed 16-bit
            // number show as empty cells on purpose.
            return copyText("");
    }
}

} // namespace morvath
