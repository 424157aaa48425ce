// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/machine.hpp"
#include "sim/service.hpp"

#include <string_view>

namespace morvath::sim
{

/** A Set call of the right type for a property that may be written. */
struct Setting
{
    const Machine& machine;
    Service& service;
    std::string_view path;
    std::string_view interface;
    Property& property;
    const Value& value;
};

/**
 * Carries out a setting. This is the one place for what a machine does when
 * it is told to change: refuse with BusError, or change more than was said.
 */
void apply(const Setting& setting);

} // namespace morvath::sim
