// SPDX-License-Identifier: Apache-2.0
#include "sim/record/path_names.hpp"

#include <array>
#include <cctype>
#include <charconv>
#include <cstdio>

namespace morvath::sim
{

constexpr int hexadecimal = 16;

std::string encodedName(std::string_view name)
{
    std::string segment;
    for (const char character : name)
    {
        const auto byte = static_cast<unsigned char>(character);
        // The first one always, which marks the segment as a code.
        if (!segment.empty() && std::isalnum(byte) != 0)
        {
            segment += character;
            continue;
        }
        std::array<char, sizeof("_00")> code{};
        std::snprintf(code.data(), code.size(), "_%02x", byte);
        segment += code.data();
    }
    return segment;
}

std::optional<std::string> decodedName(std::string_view segment)
{
    if (!segment.starts_with('_'))
    {
        return std::nullopt;
    }
    std::string name;
    while (!segment.empty())
    {
        unsigned char byte = static_cast<unsigned char>(segment.front());
        std::size_t length = 1;
        if (segment.front() == '_')
        {
            length = sizeof("_00") - 1;
            const char* end = segment.data() + length;
            if (segment.size() < length ||
                std::from_chars(segment.data() + 1, end, byte, hexadecimal)
                        .ptr != end)
            {
                return std::nullopt;
            }
        }
        name += static_cast<char>(byte);
        segment.remove_prefix(length);
    }
    return name;
}

} // namespace morvath::sim
