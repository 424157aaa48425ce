// SPDX-License-Identifier: Apache-2.0
#include "sim/names.hpp"

#include "sim/sd_bus.hpp"

#include <array>

namespace morvath::sim
{

namespace
{

struct NameRule
{
    int (*isValid)(const char*);
    const char* description;
};

constexpr std::array rules{
    NameRule{sd_bus_service_name_is_valid, "a bus name"},
    NameRule{sd_bus_object_path_is_valid, "an object path"},
    NameRule{sd_bus_interface_name_is_valid, "an interface name"},
    NameRule{sd_bus_member_name_is_valid, "a member name"},
};

} // namespace

const std::string& checkedName(NameKind kind, const std::string& name,
                               const JsonCursor& place)
{
    const NameRule& rule = rules.at(static_cast<std::size_t>(kind));
    const bool hasZero = name.find('\0') != std::string::npos;
    if (hasZero || rule.isValid(name.c_str()) <= 0)
    {
        place.fail("\"" + name + "\" is not " + rule.description);
    }
    return name;
}

} // namespace morvath::sim
