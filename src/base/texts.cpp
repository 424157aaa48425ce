// SPDX-License-Identifier: Apache-2.0
#include "base/texts.hpp"

#include "morvath.h"

#include <charconv>
#include <stdexcept>

namespace morvath
{
namespace
{

/** Each "_" and two hexadecimal digits give a byte; else nothing at all. */
std::string decode(std::string_view segment)
{
    std::string decoded;
    for (std::size_t index = 0; index < segment.size(); ++index)
    {
        unsigned char byte = segment[index];
        if (byte == '_')
        {
            const auto digits = segment.substr(index + 1, 2);
            const char* end = digits.data() + digits.size();
            if (digits.size() != 2 ||
                std::from_chars(digits.data(), end, byte, 16).ptr != end)
            {
                return {};
            }
            index += digits.size();
        }
        decoded += static_cast<char>(byte);
    }
    return decoded;
}

} // namespace

void raiseMissing()
{
    throw std::logic_error("basic_string: construction from null is not valid");
}

std::string_view lastPart(std::string_view text, std::string_view otherwise)
{
    const auto dot = text.rfind('.');
    return dot == text.npos ? otherwise : text.substr(dot + 1);
}

std::string lastSegment(std::string_view path)
{
    const auto slash = path.rfind('/');
    if (slash == path.npos)
    {
        return {};
    }
    path.remove_prefix(slash + 1);
    return path.starts_with('_') ? decode(path) : std::string(path);
}

} // namespace morvath

std::string getLastStr(const std::string& text)
{
    return std::string(morvath::lastPart(text, morvath::unknownWord));
}
