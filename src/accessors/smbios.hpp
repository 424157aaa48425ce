// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bus/properties.hpp"

namespace morvath
{

/** Of the object that carries the facts of the system and of its BIOS. */
constexpr Property smbiosProperty(const char* interface, const char* name)
{
    return {"xyz.openbmc_project.Smbios.MDR_V2",
            "/xyz/openbmc_project/inventory/system/chassis/motherboard/bios",
            interface, name};
}

constexpr auto biosConfiguration = "xyz.openbmc_project.BIOSConfig.BiosConf";

} // namespace morvath
