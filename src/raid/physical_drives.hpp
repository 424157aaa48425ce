// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "vontel.hpp"

#include <vector>

namespace morvath
{

/** What every operation of the RAID management library with one is given. */
constexpr uint8_t selector = 0;

/**
 * Appends every drive behind every controller, in the order of the library.
 * @return 0, also without a RAID manager; or the library's own result at the
 *         first call that fails, with the drives before it in the list
 */
int collectRaidPhysicalDrives(std::vector<vontel::PhyDevInfo_T>& drives);

} // namespace morvath
