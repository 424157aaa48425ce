// SPDX-License-Identifier: Apache-2.0
// Precompiled for the simulator, half of whose files read or write JSON.
#include <nlohmann/json.hpp>
#include <systemd/sd-bus.h>

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>
