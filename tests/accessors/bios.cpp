#include "morvath.h"
#include "support/machine.hpp"
#include "support/result.hpp"

#include <gtest/gtest.h>

#include <variant>

namespace morvath::tests
{
namespace
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

Machine setup(const Json& properties)
{
    return Machine().owns(path, service, {{interface, properties}});
}

TEST(Bios, WidensEachChoice)
{
    for (const auto& choice : choices)
    {
        sim::Platform platform(
            setup({{choice.property, property(choice.type, choice.published)}})
                .scenario());
        EXPECT_EQ(readNumber(choice.get), (NumberResult{0, choice.value}))
            << choice.property;
    }
}

TEST(Bios, WritesZeroWhenACallFails)
{
    for (const auto& choice : choices)
    {
        EXPECT_EQ(readNumber(choice.get), (NumberResult{-1, 0}))
            << choice.property;
    }
}

TEST(Bios, RaisesForTheOtherType)
{
    for (const auto& choice : choices)
    {
        const bool isByte = choice.type == std::string("y");
        sim::Platform platform(
            setup({{choice.property,
                    isByte ? property("b", true) : property("y", 1)}})
                .scenario());
        uint32_t value = 9;
        EXPECT_THROW(choice.get(&value), std::bad_variant_access);
        EXPECT_EQ(value, 9u) << choice.property;
    }
}

} // namespace
} // namespace morvath::tests
