// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "support/machine.hpp"
#include "support/result.hpp"

#include <gtest/gtest.h>

namespace morvath::tests
{
namespace
{

constexpr auto service = "xyz.openbmc_project.Settings";
constexpr auto path = "/xyz/openbmc_project/control/host0/power_restore_policy";
constexpr auto interface = "xyz.openbmc_project.Control.Power.RestorePolicy";
const std::string prefix =
    "xyz.openbmc_project.Control.Power.RestorePolicy.Policy.";

TEST(RestorePolicy, IsReadAsAWord)
{
    const std::pair<std::string, TextResult> cases[]{
        {prefix + "AlwaysOn", {0, "AlwaysOn"}},
        {prefix + "AlwaysOff", {0, "AlwaysOff"}},
        {prefix + "Restore", {0, "LastState"}},
        {prefix + "AlwaysOf", {0, "AlwaysOff"}},
        {prefix + "R", {0, "LastState"}},
        {"xyz", {0, "AlwaysOn"}},
        {prefix + "None", {-1, nothing}},
        {prefix + "AlwaysOnx", {-1, nothing}},
        {"AlwaysOn", {-1, nothing}},
        {"", {0, "Unknown"}},
    };
    for (const auto& [policy, result] : cases)
    {
        sim::Platform platform(
            Machine()
                .owns(path, service,
                      {{interface, {{"PowerRestorePolicy", text(policy)}}}})
                .scenario());
        EXPECT_EQ(readText(getPowerRestorePolicy), result) << policy;
    }
    EXPECT_EQ(readText(getPowerRestorePolicy), (TextResult{-1, nothing}));
}

TEST(RestorePolicy, IsWrittenInFull)
{
    const std::pair<const char*, const char*> cases[]{
        {"AlwaysOn", "AlwaysOn"}, {"alwaysoff", "AlwaysOff"},
        {"LASTSTATE", "Restore"}, {"Last", "Restore"},
        {"Always", "AlwaysOn"},   {"alwaysof", "AlwaysOff"},
        {"", "AlwaysOn"},
    };
    sim::Platform platform(sim::Scenario::standard());
    for (const auto& [word, policy] : cases)
    {
        platform.clearCalls();
        EXPECT_EQ(setPowerRestorePolicy(word), 0) << word;
        EXPECT_EQ(
            platform.calls().at(0).arguments,
            Json({interface, "PowerRestorePolicy", text(prefix + policy)}));
    }
    platform.clearCalls();
    for (const auto* word : {"Never", "AlwaysOnn", "Restore", " AlwaysOn"})
    {
        EXPECT_EQ(setPowerRestorePolicy(word), -3) << word;
    }
    EXPECT_TRUE(platform.calls().empty());
}

} // namespace
} // namespace morvath::tests
