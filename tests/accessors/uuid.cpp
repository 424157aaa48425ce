// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "support/result.hpp"

#include <gtest/gtest.h>
#include <systemd/sd-id128.h>

namespace morvath::tests
{
namespace
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

} // namespace
} // namespace morvath::tests
