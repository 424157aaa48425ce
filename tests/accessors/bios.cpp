// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "support/machine.hpp"
#include "support/result.hpp"

#include <gtest/gtest.h>

#include <variant>

namespace morvath::tests::bios
{

constexpr auto service = "xyz.openbmc_project.Smbios.MDR_V2";
constexpr auto path =
    "/xyz/openbmc_project/inventory/system/chassis/motherboard/bios";
constexpr auto interface = "xyz.openbmc_project.BIOSConfig.BiosConf";

struct Choice
{
    int32_t (*get)(uint32_t*);
    const char* property;
    const char* type;
    Json published;
    uint32_t value;
};

const Choice choices[]{
    {getBiosBootType, "BootType", "y", 7, 7},
    {getBiosIPV4Support, "IPv4PXESupport", "b", true, 1},
    {getBiosIPV6Support, "IPv6PXESupport", "b", false, 0},
    {getBiosBootOrder0, "BootTypeOrder0", "y", 0, 0},
    {getBiosBootOrder1, "BootTypeOrder1", "y", 1, 1},
    {getBiosBootOrder2, "BootTypeOrder2", "y", 254, 254},
    {getBiosBootOrder3, "BootTypeOrder3", "y", 255, 255},
    {getBiosHyperThreading, "ProcessorHyperThreading", "b", true, 1},
};

sim::Scenario setup(const char* name, const Json& value)
{
    return Machine()
        .owns(path, service, {{interface, {{name, value}}}})
        .scenario();
}

TEST(Bios, WidensEachChoiceOfItsType)
{
    for (const auto& [get, name, type, published, value] : choices)
    {
        {
            sim::Platform platform(setup(name, property(type, published)));
            EXPECT_EQ(readNumber(get), (NumberResult{0, value})) << name;
        }
        const bool byte = published.is_number();
        sim::Platform platform(
            setup(name, byte ? property("b", true) : property("y", 1)));
        try
        {
            readNumber(get);
            ADD_FAILURE() << name << " of another type is read";
        }
        catch (const std::bad_variant_access& error)
        {
            EXPECT_STREQ(error.what(), "std::get: wrong index for variant");
        }
    }
}

} // namespace morvath::tests::bios
