// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sdbusplus/bus.hpp>

namespace morvath
{

/**
 * The one connection of the process, opened when the library is loaded and
 * flushed, closed and released when the process exits. It is null when there
 * was no bus; every call then fails where its request is created.
 */
extern sdbusplus::bus_t processBus;

} // namespace morvath
