// SPDX-License-Identifier: Apache-2.0
#include "client.hpp"

#include <charconv>
#include <cstdlib>
#include <cstring>

namespace morvath::bench
{
namespace
{

template <typename... Format>
char* numberText(auto number, Format... format)
{
    std::array<char, 330> text;
    *std::to_chars(text.begin(), text.end(), number, format...).ptr = '\0';
    return strdup(text.data());
}

} // namespace

std::size_t columnOf(const char* name)
{
    std::size_t column = 0;
    while (column < columns.size() && std::strcmp(columns[column], name) != 0)
    {
        ++column;
    }
    return column;
}

char* textOf(int64_t number) { return numberText(number); }

char* textOf(uint64_t number) { return numberText(number); }

char* textOf(double number)
{
    return numberText(number, std::chars_format::fixed, 2);
}

uint64_t checksum(Rows&& rows)
{
    constexpr uint64_t fnvOffset = 0xcbf29ce484222325;
    constexpr uint64_t fnvPrime = 0x100000001b3;
    uint64_t sum = fnvOffset;
    for (auto& row : rows)
    {
        for (char* text : row)
        {
            for (const char* c = text; c && *c; ++c)
            {
                sum = (sum ^ static_cast<unsigned char>(*c)) * fnvPrime;
            }
            sum = (sum ^ 0xff) * fnvPrime;
            std::free(text);
        }
    }
    return sum;
}

} // namespace morvath::bench
