// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

namespace sdbusplus
{
namespace message::details
{

/** An object path as a type of its own, apart from plain texts. */
struct string_path_wrapper
{
    std::string str;

    string_path_wrapper() = default;
    string_path_wrapper(const std::string& path) : str(path) {}
    string_path_wrapper(std::string&& path) : str(std::move(path)) {}

    operator const std::string&() const&
    {
        return str;
    }
    operator std::string() &&
    {
        return std::move(str);
    }

    bool operator==(const string_path_wrapper&) const = default;

    /** The last segment, decoded when it begins with "_". */
    std::string filename() const;
};

} // namespace message::details

using object_path = message::details::string_path_wrapper;

} // namespace sdbusplus
