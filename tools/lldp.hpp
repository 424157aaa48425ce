// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace morvath::tools
{

/** Switches LLDP for a port of an adapter. Raises what goes wrong. */
bool setLldp(const std::string& adapter, const std::string& port, bool on);

} // namespace morvath::tools
