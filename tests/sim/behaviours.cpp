// SPDX-License-Identifier: Apache-2.0
#include "client.hpp"
#include "sim/platform.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace morvath::tests
{

namespace
{

const std::string host = "xyz.openbmc_project.State.Host";
const std::string hostPath = "/xyz/openbmc_project/state/host0";

} // namespace

TEST(Behaviours, HostFollowsTransitions)
{
    const std::vector<std::pair<std::string, std::string>> steps{
        {"Reboot", "Running"},
        {"Off", "Off"},
        {"Reboot", "Off"},
        {"ForceWarmReboot", "Off"},
        {"On", "Running"},
        {"GracefulWarmReboot", "Running"},
        {"ForceWarmReboot", "Running"},
    };
    const sim::Platform platform(sim::Scenario::standard());
    Client client;
    for (const auto& [transition, state] : steps)
    {
        const Value request = text(host + ".Transition." + transition);
        client.set(host, hostPath, host, "RequestedHostTransition", request);
        for (const std::string& service : {host, host + "0"})
        {
            const auto held = [&](const std::string& name) {
                return platform.property(service, hostPath, host, name);
            };
            EXPECT_EQ(held("RequestedHostTransition"), *request.text());
            EXPECT_EQ(held("CurrentHostState"), host + ".HostState." + state)
                << transition;
        }
    }
}

} // namespace morvath::tests
