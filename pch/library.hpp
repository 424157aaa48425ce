// SPDX-License-Identifier: Apache-2.0
// Precompiled, as parsing it takes longer than a file of the library. Each file
// includes what it needs all the same: one build goes without this.
#include <sdbusplus/bus.hpp>
#include <sdbusplus/exception.hpp>
#include <sdbusplus/message.hpp>
#include <systemd/sd-bus.h>

#include <algorithm>
#include <array>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>
