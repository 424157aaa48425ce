// SPDX-License-Identifier: Apache-2.0
#include "base/last_part.hpp"
#include "base/required.hpp"
#include "bus/properties.hpp"
#include "morvath.h"

#include <strings.h>

#include <array>
#include <cstring>

using namespace morvath;

namespace
{

constexpr Property restorePolicy{
    "xyz.openbmc_project.Settings",
    "/xyz/openbmc_project/control/host0/power_restore_policy",
    "xyz.openbmc_project.Control.Power.RestorePolicy", "PowerRestorePolicy"};

struct PolicyWord
{
    const char* word;
    const char* policy;
};

constexpr std::array policyWords{
    PolicyWord{
        "AlwaysOn",
        "xyz.openbmc_project.Control.Power.RestorePolicy.Policy.AlwaysOn"},
    PolicyWord{
        "AlwaysOff",
        "xyz.openbmc_project.Control.Power.RestorePolicy.Policy.AlwaysOff"},
    PolicyWord{
        "LastState",
        "xyz.openbmc_project.Control.Power.RestorePolicy.Policy.Restore"},
};

} // namespace

// In both directions the length of what is looked for decides, so that any
// leading part matches the first entry that begins with it. This is on purpose.

int32_t getPowerRestorePolicy(char** policy)
{
    CText value;
    if (const auto code = readText(restorePolicy, value))
    {
        return code;
    }
    if (!value)
    {
        *policy = newText(unknownWord).release();
        return success;
    }
    const auto length = std::strlen(value.get());
    for (const auto& entry : policyWords)
    {
        if (std::strncmp(value.get(), entry.policy, length) == 0)
        {
            *policy = newText(entry.word).release();
            return success;
        }
    }
    return busFailure;
}

int32_t setPowerRestorePolicy(const char* policy)
{
    const auto length = std::strlen(required(policy));
    for (const auto& entry : policyWords)
    {
        if (strncasecmp(policy, entry.word, length) == 0)
        {
            return writeText(restorePolicy, entry.policy);
        }
    }
    return rejected;
}
