// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <stdexcept>
#include <string>

namespace vontel::simulation
{

/** What is wrong in a RAID section. */
struct Mistake : std::runtime_error
{
    Mistake(std::string place, const std::string& message) :
        std::runtime_error(message),
        place(std::move(place))
    {}

    /** A JSON pointer into the section. */
    std::string place;
};

/** @throws Mistake  the first one in the RAID section of a scenario */
void check(const nlohmann::ordered_json& section);

} // namespace vontel::simulation
