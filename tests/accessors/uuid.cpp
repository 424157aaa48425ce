#include "morvath.h"
#include "support/result.hpp"

#include <gtest/gtest.h>
#include <systemd/sd-id128.h>

#include <algorithm>

namespace morvath::tests
{
namespace
{

/** Empty where the machine has no identifier, as in a bare container. */
std::string derived()
{
    sd_id128_t application;
    sd_id128_t identifier;
    char text[SD_ID128_STRING_MAX];
    sd_id128_from_string("3c9a51f2-7b0e-4d68-9e27-b14f0a6c5d83", &application);
    return sd_id128_get_machine_app_specific(application, &identifier) < 0
               ? ""
               : sd_id128_to_string(identifier, text);
}

TEST(DeviceUuid, IsDerivedFromTheMachine)
{
    const auto uuid = readText(getBMCDeviceUUID);
    ASSERT_EQ(uuid.code, 0);
    ASSERT_TRUE(uuid.value);
    EXPECT_EQ(readText(getBMCDeviceUUID), uuid);

    auto digits = *uuid.value;
    if (!digits.empty())
    {
        ASSERT_EQ(digits.size(), 36u);
        for (const std::size_t place : {8, 13, 18, 23})
        {
            EXPECT_EQ(digits[place], '-') << place;
        }
        std::erase(digits, '-');
    }
    EXPECT_EQ(digits, derived());
}

} // namespace
} // namespace morvath::tests
