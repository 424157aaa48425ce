// SPDX-License-Identifier: Apache-2.0
// Precompiled for the tests, which nearly all put a machine together in JSON.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>
#include <vector>
