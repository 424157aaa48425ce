// SPDX-License-Identifier: Apache-2.0
#include "base/texts.hpp"
#include "bus/properties.hpp"
#include "morvath.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

using namespace morvath;

namespace
{

constexpr Property hostProperty(const char* name)
{
    return {"xyz.openbmc_project.State.Host",
            "/xyz/openbmc_project/state/host0",
            "xyz.openbmc_project.State.Host", name};
}

constexpr auto currentState = hostProperty("CurrentHostState");
constexpr auto requestedTransition = hostProperty("RequestedHostTransition");

constexpr auto otherState = "PowerOff";

struct StateWord
{
    std::string_view state;
    const char* word;
};

constexpr std::array stateWords{
    StateWord{"Running", "PowerOn"},
    StateWord{"Quiesced", "PowerOn"},
    StateWord{"DiagnosticMode", "PowerOn"},
    StateWord{"TransitioningToRunning", "PoweringOn"},
    StateWord{"TransitioningToOff", "PoweringOff"},
};

constexpr auto transitionPrefix = "xyz.openbmc_project.State.Host.Transition.";
constexpr uint32_t otherTransition = 255;

/** Each at the place of its code. */
constexpr std::array transitions{
    "Off", "On", "Reboot", "GracefulWarmReboot", "ForceWarmReboot",
};

const char* wordOf(std::string_view state)
{
    const auto found = std::ranges::find(stateWords, state, &StateWord::state);
    return found == stateWords.end() ? otherState : found->word;
}

uint32_t transitionCode(std::string_view transition)
{
    const auto found = std::ranges::find(transitions, transition);
    return found == transitions.end()
               ? otherTransition
               : static_cast<uint32_t>(found - transitions.begin());
}

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

int32_t getSystemPowerState(char** state)
{
    CText value;
    if (const auto code = readText(currentState, value))
    {
        return code;
    }
    std::string_view word = unknownWord;
    if (value)
    {
        // A state without a dot is a failure here, on purpose, although
        // getLastStr() knows a word for it.
        const char* dot = std::strrchr(value.get(), '.');
        if (!dot)
        {
            return busFailure;
        }
        word = wordOf(dot + 1);
    }
    *state = newText(word).release();
    return success;
}

int32_t getSystemPowerCtl(uint32_t* code)
{
    CText value;
    if (const auto status = readText(requestedTransition, value))
    {
        return status;
    }
    *code = value ? transitionCode(lastPart(value.get(), unknownWord))
                  : otherTransition;
    return success;
}

int32_t setSystemPowerCtl(uint32_t code)
{
    if (code >= transitions.size())
    {
        return rejected;
    }
    const auto transition = std::string(transitionPrefix) + transitions[code];
    return writeText(requestedTransition, transition.c_str());
}

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
