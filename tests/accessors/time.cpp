// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "support/machine.hpp"

#include <gtest/gtest.h>
#include <time.h>

namespace morvath::tests
{
namespace
{

TEST(Clock, IsThatOfTheMachine)
{
    const auto before = static_cast<uint32_t>(time(nullptr));
    uint32_t now = 0;
    EXPECT_EQ(getTimeStamp(&now), 0);
    EXPECT_LE(before, now);
    EXPECT_LE(now, static_cast<uint32_t>(time(nullptr)));

    timezone = -5400;
    int32_t offset = 0;
    EXPECT_EQ(getTimeZone(&offset), 0);
    EXPECT_EQ(offset, -5400);
    tzset();
}

TEST(SetTime, WritesMicrosecondsUnlessUnderNtp)
{
    const auto service = "xyz.openbmc_project.Time.Manager";
    const auto path = "/xyz/openbmc_project/time/bmc";
    const auto interface = "xyz.openbmc_project.Time.EpochTime";
    const std::pair<int32_t, uint64_t> cases[]{
        {0, 0},
        {INT32_MAX, 2147483647000000},
        {-1, 18446744073708551616u},
        {INT32_MIN, 18444596590061551616u},
    };
    sim::Platform platform(sim::Scenario::standard());
    // While the clock follows a server, nobody else may set it.
    EXPECT_EQ(setTimeStamp(1), -1);
    EXPECT_EQ(setNtpServerStatus(0), 0);
    for (const auto& [seconds, microseconds] : cases)
    {
        EXPECT_EQ(setTimeStamp(seconds), 0);
        EXPECT_EQ(platform.property(service, path, interface, "Elapsed"),
                  microseconds)
            << seconds;
    }
}

} // namespace
} // namespace morvath::tests
