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

// The longest text is that of the lowest double: sign, digits, point, decimals.
constexpr std::size_t longestNumber =
    1 + std::numeric_limits<double>::max_exponent10 + 1 + 1 + decimals;

template <typename Number, typename... Format>
CText renderNumber(Number value, Format... format)
{
    std::array<char, longestNumber> text;
    const auto end = std::to_chars(text.begin(), text.end(), value, format...);
    return newText({text.begin(), end.ptr});
}

} // namespace

CText renderPropertyValue(const BasicValue& value)
{
    switch (value.type)
    {
        case SD_BUS_TYPE_STRING: return newText(value.text);
        case SD_BUS_TYPE_INT64: return renderNumber(value.int64);
        case SD_BUS_TYPE_UINT64: return renderNumber(value.uint64);
        case SD_BUS_TYPE_DOUBLE:
            return renderNumber(value.real, std::chars_format::fixed, decimals);
        case SD_BUS_TYPE_INT32: return renderNumber(int64_t{value.int32});
        case SD_BUS_TYPE_UINT32: return renderNumber(uint64_t{value.uint32});
        case SD_BUS_TYPE_UINT16: return renderNumber(uint64_t{value.uint16});
        case SD_BUS_TYPE_BYTE: return renderNumber(uint64_t{value.byte});
        case SD_BUS_TYPE_BOOLEAN: return newText(value.boolean ? "1" : "0");
        default:
            // Lists and, unlike its unsigned neighbour, the signed 16-bit
            // number show as empty cells on purpose.
            return newText("");
    }
}

} // namespace morvath
