// SPDX-License-Identifier: Apache-2.0
#include "accessors/smbios.hpp"
#include "morvath.h"

using namespace morvath;

namespace
{

struct Choice
{
    Property property;
    int32_t (*read)(const Property&, uint8_t*);
};

constexpr Choice byteChoice(const char* name)
{
    return {smbiosProperty(biosConfiguration, name), readByte};
}

constexpr Choice flagChoice(const char* name)
{
    return {smbiosProperty(biosConfiguration, name), readFlag};
}

constexpr auto bootType = byteChoice("BootType");
constexpr auto ipv4Boot = flagChoice("IPv4PXESupport");
constexpr auto ipv6Boot = flagChoice("IPv6PXESupport");
constexpr auto bootOrder0 = byteChoice("BootTypeOrder0");
constexpr auto bootOrder1 = byteChoice("BootTypeOrder1");
constexpr auto bootOrder2 = byteChoice("BootTypeOrder2");
constexpr auto bootOrder3 = byteChoice("BootTypeOrder3");
constexpr auto hyperThreading = flagChoice("ProcessorHyperThreading");

int32_t readChoice(const Choice& choice, uint32_t* value)
{
    uint8_t byte = 0;
    const auto code = choice.read(choice.property, &byte);
    // Stored whatever the code, on purpose: a failure leaves 0 behind.
    *value = byte;
    return code;
}

} // namespace

int32_t getBiosBootType(uint32_t* value)
{
    return readChoice(bootType, value);
}

int32_t getBiosIPV4Support(uint32_t* value)
{
    return readChoice(ipv4Boot, value);
}

int32_t getBiosIPV6Support(uint32_t* value)
{
    return readChoice(ipv6Boot, value);
}

int32_t getBiosBootOrder0(uint32_t* value)
{
    return readChoice(bootOrder0, value);
}

int32_t getBiosBootOrder1(uint32_t* value)
{
    return readChoice(bootOrder1, value);
}

int32_t getBiosBootOrder2(uint32_t* value)
{
    return readChoice(bootOrder2, value);
}

int32_t getBiosBootOrder3(uint32_t* value)
{
    return readChoice(bootOrder3, value);
}

int32_t getBiosHyperThreading(uint32_t* value)
{
    return readChoice(hyperThreading, value);
}
