// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace morvath
{

constexpr int32_t success = 0;
constexpr int32_t busFailure = -1;
constexpr int32_t outOfMemory = -2;
constexpr int32_t rejected = -3;
constexpr int32_t raidFailure = -4;

} // namespace morvath
