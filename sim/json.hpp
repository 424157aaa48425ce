// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json_cursor.hpp"

#include <nlohmann/json.hpp>
