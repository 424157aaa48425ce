// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>

namespace morvath::exporter
{

/**
 * The tables of "morvath metrics" in the order in which they are read: what is
 * watched most comes first. Published as labels, never changed.
 */
constexpr std::array tableNames{
    "temperatures", "fans",          "voltages",    "currents",
    "powers",       "pwms",          "host",        "power-supplies",
    "disks",        "raid-drives",   "gpus",        "memory",
    "processors",   "network-ports", "bmc-network", "network-adapters",
    "pcie-slots",   "system",        "firmware",    "raid-controllers",
};

} // namespace morvath::exporter
