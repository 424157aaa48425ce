// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json_value.hpp"

#include <string_view>

namespace morvath::sim
{

struct Property;
class Service;
struct Services;

/** A Set call of the right type for a property that may be written. */
struct Setting
{
    Services& services;
    Service& service;
    std::string_view path;
    std::string_view interface;
    Property& property;
    const Json& value;
};

/** Whether scenarios may choose it. */
bool isBehaviour(std::string_view name);

/**
 * Carries out a setting. This is the one place for what a machine does when
 * it is told to change: refuse with BusError, or change more than was said.
 */
void apply(const Setting& setting);

} // namespace morvath::sim
