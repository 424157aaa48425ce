// SPDX-License-Identifier: Apache-2.0
#include "bus/object_path.hpp"

#include <charconv>

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
