// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "raid/vontel.hpp"

#include <vector>

namespace morvath
{

/**
 * Appends every drive behind every controller, in the order of the library.
 * @return 0, also without a RAID manager; or the library's own result at the
 *         first call that fails, with the drives before it in the list
 */
int collectRaidPhysicalDrives(std::vector<vontel::PhyDevInfo_T>& drives);

} // namespace morvath
