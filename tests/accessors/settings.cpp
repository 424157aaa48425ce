#include "morvath.h"
#include "support/machine.hpp"
#include "support/result.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace morvath::tests
{
namespace
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

template <typename Result>
using Readings = std::vector<std::pair<std::string, Result>>;

template <typename Value>
using Words = std::vector<std::pair<Value, std::string>>;

/** A star in front of what is held stands for the prefix. */
template <typename Read, typename Result>
void expectRead(const Setting& setting, const Read& read,
                const Readings<Result>& cases)
{
    for (const auto& [held, result] : cases)
    {
        const auto value =
            held.starts_with('*') ? setting.prefix + held.substr(1) : held;
        sim::Platform platform(
            Machine()
                .owns(setting.path, setting.service,
                      {{setting.interface, {{setting.property, text(value)}}}})
                .scenario());
        EXPECT_EQ(read(), result) << value;
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
        EXPECT_EQ(platform.calls().at(0).arguments,
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
    expectRead(
        state, [] { return readText(getSystemPowerState); },
        Readings<TextResult>{{"*Running", {0, "PowerOn"}},
                             {"*Quiesced", {0, "PowerOn"}},
                             {"*DiagnosticMode", {0, "PowerOn"}},
                             {"*TransitioningToRunning", {0, "PoweringOn"}},
                             {"*TransitioningToOff", {0, "PoweringOff"}},
                             {"*Off", {0, "PowerOff"}},
                             {"*Standby", {0, "PowerOff"}},
                             {"*", {0, "PowerOff"}},
                             {".Running", {0, "PowerOn"}},
                             {"Running", {-1, nothing}},
                             {"", {0, "Unknown"}},
                             {"*" + std::string(200, 'x'), {0, "Unknown"}}});
}

TEST(PowerControl, HasACodeForEachRequest)
{
    expectRead(
        transition, [] { return readNumber(getSystemPowerCtl); },
        Readings<NumberResult>{{"*Off", {0, 0}},
                               {"*On", {0, 1}},
                               {"*Reboot", {0, 2}},
                               {"*GracefulWarmReboot", {0, 3}},
                               {"*ForceWarmReboot", {0, 4}},
                               {"*ForceWarm", {0, 255}},
                               {"*", {0, 255}},
                               {"x.On", {0, 1}},
                               {"On", {0, 255}},
                               {"", {0, 255}}});
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
    expectRead(
        policy, [] { return readText(getPowerRestorePolicy); },
        Readings<TextResult>{{"*AlwaysOn", {0, "AlwaysOn"}},
                             {"*AlwaysOff", {0, "AlwaysOff"}},
                             {"*Restore", {0, "LastState"}},
                             {"*AlwaysOf", {0, "AlwaysOff"}},
                             {"*R", {0, "LastState"}},
                             {"xyz", {0, "AlwaysOn"}},
                             {"*None", {-1, nothing}},
                             {"*AlwaysOnx", {-1, nothing}},
                             {"AlwaysOn", {-1, nothing}},
                             {"", {0, "Unknown"}}});
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
    expectRead(
        method, [] { return readNumber(getNtpServerStatus); },
        Readings<NumberResult>{{"*NTP", {0, 1}},
                               {"*Manual", {0, 0}},
                               {"*NT", {0, 1}},
                               {"*Man", {0, 0}},
                               {"*", {0, 1}},
                               {"x", {0, 1}},
                               {"*NTPx", {0, 255}},
                               {"*PTP", {0, 255}},
                               {"NTP", {0, 255}},
                               {"", {0, 255}}});
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

} // namespace
} // namespace morvath::tests
