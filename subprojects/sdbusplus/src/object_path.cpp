// SPDX-License-Identifier: Apache-2.0
#include <sdbusplus/message/native_types.hpp>

#include <charconv>
#include <string_view>

namespace sdbusplus::message::details
{
namespace
{

/** Each "_" and two hexadecimal digits give a byte; else nothing at all. */
std::string decode(std::string_view segment)
{
    std::string decoded;
    decoded.reserve(segment.size());
    while (!segment.empty())
    {
        if (segment.front() != '_')
        {
            decoded += segment.front();
            segment.remove_prefix(1);
            continue;
        }
        const auto digits = segment.substr(1, 2);
        const char* end = digits.data() + digits.size();
        unsigned char byte = 0;
        if (digits.size() != 2 ||
            std::from_chars(digits.data(), end, byte, 16).ptr != end)
        {
            return {};
        }
        decoded += static_cast<char>(byte);
        segment.remove_prefix(3);
    }
    return decoded;
}

} // namespace

std::string string_path_wrapper::filename() const
{
    const auto slash = str.rfind('/');
    if (slash == std::string::npos)
    {
        return {};
    }
    const auto segment = std::string_view(str).substr(slash + 1);
    return segment.starts_with('_') ? decode(segment) : std::string(segment);
}

} // namespace sdbusplus::message::details
