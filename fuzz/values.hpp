// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "fuzz/input.hpp"

#include <systemd/sd-bus.h>

namespace morvath::fuzz
{

/** Ends the process when sd-bus fails, which is not the library's fault. */
void check(int result);

/** As "GetSubTree" answers: objects, their owners, the owners' interfaces. */
void appendObjects(sd_bus_message* reply, Input& input);

/** As "GetSubTreePaths" answers. */
void appendPaths(sd_bus_message* reply, Input& input);

/** As "GetAll" answers. */
void appendProperties(sd_bus_message* reply, Input& input);

/** As "Get" answers. */
void appendVariant(sd_bus_message* reply, Input& input);

/** Any values of any types. */
void appendAnything(sd_bus_message* reply, Input& input);

} // namespace morvath::fuzz
