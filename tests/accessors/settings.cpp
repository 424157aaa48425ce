// SPDX-License-Identifier: Apache-2.0
#include "morvath.hpp"
#include "support/machine.hpp"

#include <gtest/gtest.h>

#include <map>
#include <type_traits>

namespace morvath::tests::settings
{

constexpr auto settings = "xyz.openbmc_project.Settings";
const std::string host = "xyz.openbmc_project.State.Host";
const std::string hostPath = "/xyz/openbmc_project/state/host0";
const std::string policies = "xyz.openbmc_project.Control.Power.RestorePolicy";
const std::string synchronization = "xyz.openbmc_project.Time.Synchronization";

/** A property that holds a word of an enumeration. */
struct Setting
{
    std::string service;
    std::string path;
    std::string interface;
    std::string property;
    /** What stands before each word. */
    std::string prefix;
};

const Setting state{host, hostPath, host, "CurrentHostState",
                    host + ".HostState."};
const Setting transition{host, hostPath, host, "RequestedHostTransition",
                         host + ".Transition."};
const Setting policy{settings,
                     "/xyz/openbmc_project/control/host0/power_restore_policy",
                     policies, "PowerRestorePolicy", policies + ".Policy."};
const Setting method{settings, "/xyz/openbmc_project/time/sync_method",
                     synchronization, "TimeSyncMethod",
                     synchronization + ".Method."};

sim::Scenario holding(const Setting& setting, const std::string& value)
{
    const Json properties{{setting.property, text(value)}};
    return Machine()
        .owns(setting.path, setting.service, {{setting.interface, properties}})
        .scenario();
}

std::string textOf(const std::optional<std::string>& word) { return *word; }

std::string textOf(uint32_t code) { return std::to_string(code); }

/** The results of all that may be held; a star there stands for the prefix. */
template <typename Value>
void expectRead(const Setting& setting, int32_t (*get)(Value*),
                const std::map<std::string, std::vector<std::string>>& results)
{
    for (const auto& [result, values] : results)
    {
        for (auto value : values)
        {
            if (value.starts_with('*'))
            {
                value.replace(0, 1, setting.prefix);
            }
            const sim::Platform platform(holding(setting, value));
            try
            {
                EXPECT_EQ(textOf(read(get)), result) << value;
            }
            catch (const Error& error)
            {
                EXPECT_EQ(std::to_string(error.code()), result) << value;
            }
        }
    }
}

/** The word that is written for each value, or the code of a refusal. */
template <typename Value>
using Words = std::vector<std::pair<Value, std::string>>;

template <typename Value>
void expectWritten(const Setting& setting, int32_t (*set)(Value),
                   const std::type_identity_t<Words<Value>>& words)
{
    for (const auto& [value, word] : words)
    {
        const sim::Platform platform(holding(setting, "before"));
        const int32_t code = set(value);
        EXPECT_EQ(platform.property(setting.service, setting.path,
                                    setting.interface, setting.property),
                  code == 0 ? setting.prefix + word : "before");
        EXPECT_TRUE(code == 0 || std::to_string(code) == word) << value;
    }
}

TEST(PowerState, HasFourWords)
{
    expectRead(
        state, getSystemPowerState,
        {{"PowerOn", {"*Running", "*Quiesced", "*DiagnosticMode", ".Running"}},
         {"PoweringOn", {"*TransitioningToRunning"}},
         {"PoweringOff", {"*TransitioningToOff"}},
         {"PowerOff", {"*Off", "*"}},
         {"-1", {"Running"}},
         {"Unknown", {"", "*" + std::string(200, 'x')}}});
}

TEST(PowerControl, HasACodeForEachRequest)
{
    expectRead(transition, getSystemPowerCtl,
               {{"0", {"*Off"}},
                {"1", {"*On", "x.On"}},
                {"2", {"*Reboot"}},
                {"3", {"*GracefulWarmReboot"}},
                {"4", {"*ForceWarmReboot"}},
                {"255", {"*ForceWarm", "*", "On", ""}}});
    expectWritten(transition, setSystemPowerCtl,
                  {{0, "Off"},
                   {1, "On"},
                   {2, "Reboot"},
                   {3, "GracefulWarmReboot"},
                   {4, "ForceWarmReboot"},
                   {5, "-3"},
                   {UINT32_MAX, "-3"}});
}

TEST(RestorePolicy, IsAWord)
{
    expectRead(policy, getPowerRestorePolicy,
               {{"AlwaysOn", {"*AlwaysOn", "xyz"}},
                {"AlwaysOff", {"*AlwaysOff", "*AlwaysOf"}},
                {"LastState", {"*Restore", "*R"}},
                {"-1", {"*None", "*AlwaysOnx", "AlwaysOn"}},
                {"Unknown", {""}}});
    expectWritten(policy, setPowerRestorePolicy,
                  {{"AlwaysOn", "AlwaysOn"},
                   {"alwaysoff", "AlwaysOff"},
                   {"LASTSTATE", "Restore"},
                   {"Last", "Restore"},
                   {"", "AlwaysOn"},
                   {"Never", "-3"},
                   {"AlwaysOnn", "-3"},
                   {"Restore", "-3"}});
}

TEST(SyncMethod, IsACode)
{
    expectRead(method, getNtpServerStatus,
               {{"1", {"*NTP", "*", "x"}},
                {"0", {"*Manual", "*Man"}},
                {"255", {"*NTPx", "*PTP", "NTP", ""}}});
    expectWritten(method, setNtpServerStatus,
                  {{0, "Manual"}, {1, "NTP"}, {2, "Manual"}, {-1, "Manual"}});
}

TEST(LastStr, IsWhatFollowsTheLastDot)
{
    const std::pair<const char*, const char*> cases[]{
        {"", "Unknown"}, {"a.b.Word", "Word"}, {"a.", ""}, {".a", "a"}};
    for (const auto& [text, expected] : cases)
    {
        EXPECT_EQ(getLastStr(text), expected) << text;
    }
}

} // namespace morvath::tests::settings
