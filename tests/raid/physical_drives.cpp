// SPDX-License-Identifier: Apache-2.0
#include "raid/physical_drives.hpp"

#include "raid/raid_library.hpp"

namespace morvath::tests
{
namespace
{

std::vector<std::string>
textsOf(const std::vector<vontel::PhyDevInfo_T>& drives)
{
    std::vector<std::string> texts;
    for (const auto& drive : drives)
    {
        texts.push_back(reinterpret_cast<const char*>(
            &drive.bytes[physical_drive::driveText]));
    }
    return texts;
}

TEST(PhysicalDrives, AreKeptUpToTheFirstFailure)
{
    using Texts = std::vector<std::string>;
    auto section = twoControllers();
    // A controller without drives does not end the walk.
    auto& controllers = section["controllers"];
    controllers.insert(controllers.begin(), Json{{"raid_id", 1}});
    const struct
    {
        const char* operation;
        unsigned call;
        int result;
        int code;
        Texts texts;
    } cases[]{
        // Not called here: nothing fails.
        {"getRaidConf", 1, 0, 0, {"L4", "L5", "R4", "R65535"}},
        {"checkRaidMgrExist", 1, 0, 0, {}},
        {"getRaidIdList", 1, 12, 12, {}},
        {"getPhyDevIdList", 3, -3, -3, {"L4", "L5"}},
        {"getPhyDevInfoById", 2, -5, -5, {"L4"}},
    };
    for (const auto& one : cases)
    {
        const RaidLibrary library(
            withFault(section, one.operation, one.call, one.result));
        std::vector<vontel::PhyDevInfo_T> drives;
        EXPECT_EQ(collectRaidPhysicalDrives(drives), one.code) << one.operation;
        EXPECT_EQ(textsOf(drives), one.texts) << one.operation;
    }
}

} // namespace
} // namespace morvath::tests
