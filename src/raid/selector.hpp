// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace morvath
{

/** What every operation of the RAID management library with one is given. */
constexpr uint8_t selector = 0;

} // namespace morvath
