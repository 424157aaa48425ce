// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json_cursor.hpp"

#include <string>

namespace morvath::sim
{

enum class NameKind
{
    service,
    path,
    interface,
    member,
};

/** The text itself; fails unless it is a name of that kind. */
const std::string& checkedName(NameKind kind, const std::string& name,
                               const JsonCursor& place);

} // namespace morvath::sim
