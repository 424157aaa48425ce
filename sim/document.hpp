// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "simulation/document.hpp"

#include <memory>
#include <stdexcept>

namespace morvath::sim
{

// A scenario is read like the RAID section that it contains.
using namespace vontel::document;

/** A part of a document that lives as long as one of them is needed. */
using SharedJson = std::shared_ptr<const Json>;

/** A scenario that cannot be used; what() is "FILE: /pointer: message". */
class ScenarioError : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

} // namespace morvath::sim
