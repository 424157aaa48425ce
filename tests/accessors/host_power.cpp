// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "support/machine.hpp"
#include "support/result.hpp"

#include <gtest/gtest.h>

namespace morvath::tests
{
namespace
{

constexpr auto service = "xyz.openbmc_project.State.Host";
const std::string transition = "xyz.openbmc_project.State.Host.Transition.";
constexpr auto path = "/xyz/openbmc_project/state/host0";
constexpr auto interface = "xyz.openbmc_project.State.Host";

sim::Scenario host(const std::string& property, const std::string& value)
{
    return Machine()
        .owns(path, service, {{interface, {{property, text(value)}}}})
        .scenario();
}

TEST(PowerState, HasFourWords)
{
    const std::string state = "xyz.openbmc_project.State.Host.HostState.";
    const std::pair<std::string, TextResult> cases[]{
        {state + "Running", {0, "PowerOn"}},
        {state + "Quiesced", {0, "PowerOn"}},
        {state + "DiagnosticMode", {0, "PowerOn"}},
        {state + "TransitioningToRunning", {0, "PoweringOn"}},
        {state + "TransitioningToOff", {0, "PoweringOff"}},
        {state + "Off", {0, "PowerOff"}},
        {state + "Standby", {0, "PowerOff"}},
        {state, {0, "PowerOff"}},
        {".Running", {0, "PowerOn"}},
        {"Running", {-1, nothing}},
        {"", {0, "Unknown"}},
        {state + std::string(200, 'x'), {0, "Unknown"}},
    };
    for (const auto& [value, result] : cases)
    {
        sim::Platform platform(host("CurrentHostState", value));
        EXPECT_EQ(readText(getSystemPowerState), result) << value;
    }
    EXPECT_EQ(readText(getSystemPowerState), (TextResult{-1, nothing}));
}

TEST(PowerControl, GivesTheCodeOfAnyOtherRequest)
{
    const std::pair<std::string, uint32_t> cases[]{
        {transition + "ForceWarm", 255},
        {transition, 255},
        {"x.On", 1},
        {"On", 255},
        {"", 255},
    };
    for (const auto& [value, code] : cases)
    {
        sim::Platform platform(host("RequestedHostTransition", value));
        EXPECT_EQ(readNumber(getSystemPowerCtl), (NumberResult{0, code}))
            << value;
    }
    EXPECT_EQ(readNumber(getSystemPowerCtl), (NumberResult{-1, nothing}));
}

TEST(PowerControl, RequestsTheTransitionOfACode)
{
    EXPECT_EQ(setSystemPowerCtl(1), -1);
    sim::Platform platform(sim::Scenario::standard());
    const char* words[]{"Off", "On", "Reboot", "GracefulWarmReboot",
                        "ForceWarmReboot"};
    for (uint32_t code = 0; code < std::size(words); ++code)
    {
        platform.clearCalls();
        EXPECT_EQ(setSystemPowerCtl(code), 0);
        EXPECT_EQ(platform.calls().at(0).arguments,
                  Json({interface, "RequestedHostTransition",
                        text(transition + words[code])}));
        EXPECT_EQ(readNumber(getSystemPowerCtl), (NumberResult{0, code}));
    }
    platform.clearCalls();
    for (const auto code : {5u, 255u, static_cast<uint32_t>(-1)})
    {
        EXPECT_EQ(setSystemPowerCtl(code), -3) << code;
    }
    EXPECT_TRUE(platform.calls().empty());
}

} // namespace
} // namespace morvath::tests
