// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "support/machine.hpp"
#include "support/result.hpp"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace morvath::tests::settings
{

constexpr auto settings = "xyz.openbmc_project.Settings";

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

const std::string host = "xyz.openbmc_project.State.Host";
const std::string hostPath = "/xyz/openbmc_project/state/host0";
const std::string policies = "xyz.openbmc_project.Control.Power.RestorePolicy";
const std::string synchronization = "xyz.openbmc_project.Time.Synchronization";

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

template <typename Value>
using Words = std::vector<std::pair<Value, std::string>>;

/** The results of all that may be held; a star there stands for the prefix. */
template <typename Read>
void expectRead(const Setting& setting, const Read& read,
                const std::map<std::string, std::vector<std::string>>& results)
{
    for (const auto& [result, values] : results)
    {
        for (const auto& held : values)
        {
            const auto value =
                held.starts_with('*') ? setting.prefix + held.substr(1) : held;
            const Json properties{{setting.property, text(value)}};
            sim::Platform platform(Machine()
                                       .owns(setting.path, setting.service,
                                             {{setting.interface, properties}})
                                       .scenario());
            EXPECT_EQ(testing::PrintToString(read()), result) << value;
        }
    }
}

template <typename Set, typename Value>
void expectWritten(const Setting& setting, const Set& set,
                   const Words<Value>& cases, const std::vector<Value>& refused)
{
    sim::Platform platform(sim::Scenario::standard());
    for (const auto& [value, word] : cases)
    {
        platform.clearCalls();
        EXPECT_EQ(set(value), 0) << value;
        EXPECT_EQ(*platform.calls().at(0).arguments,
                  Json({setting.interface, setting.property,
                        text(setting.prefix + word)}))
            << value;
    }
    platform.clearCalls();
    for (const auto& value : refused)
    {
        EXPECT_EQ(set(value), -3) << value;
    }
    EXPECT_TRUE(platform.calls().empty());
}

TEST(PowerState, HasFourWords)
{
    expectRead(state, [] { return readText(getSystemPowerState); },
               {{"0 PowerOn",
                 {"*Running", "*Quiesced", "*DiagnosticMode", ".Running"}},
                {"0 PoweringOn", {"*TransitioningToRunning"}},
                {"0 PoweringOff", {"*TransitioningToOff"}},
                {"0 PowerOff", {"*Off", "*Standby", "*"}},
                {"-1 nothing", {"Running"}},
                {"0 Unknown", {"", "*" + std::string(200, 'x')}}});
}

TEST(PowerControl, HasACodeForEachRequest)
{
    expectRead(transition, [] { return readNumber(getSystemPowerCtl); },
               {{"0 0", {"*Off"}},
                {"0 1", {"*On", "x.On"}},
                {"0 2", {"*Reboot"}},
                {"0 3", {"*GracefulWarmReboot"}},
                {"0 4", {"*ForceWarmReboot"}},
                {"0 255", {"*ForceWarm", "*", "On", ""}}});
    expectWritten(transition, setSystemPowerCtl,
                  Words<uint32_t>{{0, "Off"},
                                  {1, "On"},
                                  {2, "Reboot"},
                                  {3, "GracefulWarmReboot"},
                                  {4, "ForceWarmReboot"}},
                  {5, 255, UINT32_MAX});
}

TEST(RestorePolicy, IsAWord)
{
    expectRead(policy, [] { return readText(getPowerRestorePolicy); },
               {{"0 AlwaysOn", {"*AlwaysOn", "xyz"}},
                {"0 AlwaysOff", {"*AlwaysOff", "*AlwaysOf"}},
                {"0 LastState", {"*Restore", "*R"}},
                {"-1 nothing", {"*None", "*AlwaysOnx", "AlwaysOn"}},
                {"0 Unknown", {""}}});
    expectWritten(policy, setPowerRestorePolicy,
                  Words<const char*>{{"AlwaysOn", "AlwaysOn"},
                                     {"alwaysoff", "AlwaysOff"},
                                     {"LASTSTATE", "Restore"},
                                     {"Last", "Restore"},
                                     {"Always", "AlwaysOn"},
                                     {"alwaysof", "AlwaysOff"},
                                     {"", "AlwaysOn"}},
                  {"Never", "AlwaysOnn", "Restore", " AlwaysOn"});
}

TEST(SyncMethod, IsACode)
{
    expectRead(method, [] { return readNumber(getNtpServerStatus); },
               {{"0 1", {"*NTP", "*NT", "*", "x"}},
                {"0 0", {"*Manual", "*Man"}},
                {"0 255", {"*NTPx", "*PTP", "NTP", ""}}});
    expectWritten(method, setNtpServerStatus,
                  Words<int32_t>{
                      {0, "Manual"}, {1, "NTP"}, {2, "Manual"}, {-1, "Manual"}},
                  {});
}

TEST(LastStr, IsWhatFollowsTheLastDot)
{
    const std::pair<const char*, const char*> cases[]{
        {"", "Unknown"}, {"word", "Unknown"}, {"a.b.Word", "Word"},
        {"a.", ""},      {".a", "a"},
    };
    for (const auto& [text, expected] : cases)
    {
        EXPECT_EQ(getLastStr(text), expected) << text;
    }
}

} // namespace morvath::tests::settings
