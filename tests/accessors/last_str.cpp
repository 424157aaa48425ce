// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"

#include <gtest/gtest.h>

namespace morvath::tests
{
namespace
{

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
