// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "support/machine.hpp"
#include "support/result.hpp"

#include <gtest/gtest.h>

namespace morvath::tests::firmware
{

const std::string root = "/xyz/openbmc_project/software/";
constexpr auto updater = "xyz.openbmc_project.Software.BMC.Updater";
constexpr auto version = "xyz.openbmc_project.Software.Version";
const std::string purpose =
    "xyz.openbmc_project.Software.Version.VersionPurpose.";

Json image(const std::string& kind, const std::string& number)
{
    return {{version,
             {{"Purpose", text(purpose + kind)}, {"Version", text(number)}}}};
}

TEST(Firmware, IsTheLastOfItsPurpose)
{
    const auto two = Machine()
                         .owns(root + "a", updater, image("BMC", "1"))
                         .owns(root + "b", updater, image("BMC", "2"))
                         .owns(root + "c", updater, image("System", "3"));
    struct
    {
        const char* what;
        Machine machine;
        TextResult bmc;
        TextResult bios;
    } const cases[]{
        {"none for the BIOS", two, {0, "2"}, {0, nothing}},
        {"a longer purpose",
         Machine(two).owns(root + "d", updater, image("BMCx", "")),
         {0, ""},
         {0, nothing}},
        {"properties missing",
         Machine(two)
             .owns(root + "d", updater,
                   {{version, {{"Purpose", text(purpose + "BMC")}}}})
             .owns(root + "e", updater, {{version, {{"Version", text("5")}}}})
             .owns(root + "f", updater, image("Host", "6")),
         {0, "2"},
         {0, "6"}},
    };
    for (const auto& one : cases)
    {
        sim::Platform platform(one.machine.scenario());
        EXPECT_EQ(readText(getBMCFirmwareVersion), one.bmc) << one.what;
        EXPECT_EQ(readText(getBiosFirmwareVersion), one.bios) << one.what;
    }
}

} // namespace morvath::tests::firmware
