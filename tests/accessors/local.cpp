// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "support/machine.hpp"
#include "support/result.hpp"

#include <gtest/gtest.h>
#include <systemd/sd-id128.h>
#include <time.h>

namespace morvath::tests::local
{

TEST(DeviceUuid, IsDerivedFromTheMachine)
{
    sd_id128_t application;
    sd_id128_t identifier;
    char digits[SD_ID128_STRING_MAX];
    sd_id128_from_string("3c9a51f2-7b0e-4d68-9e27-b14f0a6c5d83", &application);
    std::string expected;
    // A machine may be without an identifier, as bare containers are.
    if (sd_id128_get_machine_app_specific(application, &identifier) >= 0)
    {
        expected = sd_id128_to_string(identifier, digits);
        expected = expected.substr(0, 8) + '-' + expected.substr(8, 4) + '-' +
                   expected.substr(12, 4) + '-' + expected.substr(16, 4) + '-' +
                   expected.substr(20);
    }
    EXPECT_EQ(readText(getBMCDeviceUUID), (TextResult{0, expected}));
    EXPECT_EQ(readText(getBMCDeviceUUID), (TextResult{0, expected}));
}

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

} // namespace morvath::tests::local
