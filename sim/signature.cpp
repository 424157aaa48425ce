// SPDX-License-Identifier: Apache-2.0
#include "sim/signature.hpp"

#include <cstddef>

namespace morvath::sim
{

constexpr std::size_t maximumLength = 255;
constexpr std::string_view basicTypes = "ybnqiuxtdsogh";

namespace
{

struct Depth
{
    static constexpr int limit = 32;
    int arrays = 0;
    int structures = 0;

    bool exceeded() const
    {
        return arrays > limit || structures > limit;
    }
};

std::size_t typeLength(std::string_view text, Depth depth);

std::size_t structureLength(std::string_view text, Depth depth)
{
    depth.structures++;
    std::size_t used = 1;
    while (used < text.size() && text[used] != ')')
    {
        const std::size_t member = typeLength(text.substr(used), depth);
        if (member == 0)
        {
            return 0;
        }
        used += member;
    }
    return used > 1 && used < text.size() ? used + 1 : 0;
}

std::size_t entryLength(std::string_view text, Depth depth)
{
    depth.structures++;
    if (text.size() < 4 || !isBasicType(text[1]))
    {
        return 0;
    }
    const std::size_t value = typeLength(text.substr(2), depth);
    const std::size_t end = 2 + value;
    return value > 0 && end < text.size() && text[end] == '}' ? end + 1 : 0;
}

std::size_t arrayLength(std::string_view text, Depth depth)
{
    depth.arrays++;
    const std::string_view element = text.substr(1);
    const std::size_t length = element.starts_with('{')
                                   ? entryLength(element, depth)
                                   : typeLength(element, depth);
    return length > 0 ? length + 1 : 0;
}

/** The length of the complete type in front of the text, 0 without one. */
std::size_t typeLength(std::string_view text, Depth depth)
{
    if (text.empty() || depth.exceeded())
    {
        return 0;
    }
    switch (text.front())
    {
        case 'a':
            return arrayLength(text, depth);
        case '(':
            return structureLength(text, depth);
        case 'v':
            return 1;
        default:
            return isBasicType(text.front()) ? 1 : 0;
    }
}

} // namespace

bool isBasicType(char type)
{
    return basicTypes.find(type) != std::string_view::npos;
}

bool isCompleteType(std::string_view text)
{
    return !text.empty() && text.size() <= maximumLength &&
           typeLength(text, {}) == text.size();
}

bool isSignature(std::string_view text)
{
    if (text.size() > maximumLength)
    {
        return false;
    }
    while (!text.empty())
    {
        const std::size_t length = typeLength(text, {});
        if (length == 0)
        {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

std::string_view firstType(std::string_view signature)
{
    return signature.substr(0, typeLength(signature, {}));
}

} // namespace morvath::sim
