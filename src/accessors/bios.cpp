// SPDX-License-Identifier: Apache-2.0
#include "accessors/smbios.hpp"
#include "morvath.h"

using namespace morvath;

namespace
{

using Read = int32_t (*)(const Property&, uint8_t*);

int32_t readChoice(Read read, const char* name, uint32_t* value)
{
    uint8_t byte = 0;
    const auto code = read(smbiosProperty(biosConfiguration, name), &byte);
    // Stored whatever the code, on purpose: a failure leaves 0 behind.
    *value = byte;
    return code;
}

} // namespace

// clang-format off
#define CHOICE(function, read, name) \
    int32_t function(uint32_t* value) { return readChoice(read, name, value); }

CHOICE(getBiosBootType, readByte, "BootType")
CHOICE(getBiosIPV4Support, readFlag, "IPv4PXESupport")
CHOICE(getBiosIPV6Support, readFlag, "IPv6PXESupport")
CHOICE(getBiosBootOrder0, readByte, "BootTypeOrder0")
CHOICE(getBiosBootOrder1, readByte, "BootTypeOrder1")
CHOICE(getBiosBootOrder2, readByte, "BootTypeOrder2")
CHOICE(getBiosBootOrder3, readByte, "BootTypeOrder3")
CHOICE(getBiosHyperThreading, readFlag, "ProcessorHyperThreading")
