// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/behaviour.hpp"
#include "sim/value.hpp"

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace morvath::sim
{

class Service;

/** A property, whichever services publish it. */
struct Place
{
    std::string_view path;
    std::string_view interface;
    std::string_view property;
};

/** All services together, for a setting that concerns more than its own. */
class Machine
{
  public:
    using Services = std::vector<std::unique_ptr<Service>>;

    /** The services must outlive this; more may be added. */
    Machine(std::set<Behaviour> behaviours, const Services& services);

    bool has(Behaviour behaviour) const
    {
        return behaviours_.contains(behaviour);
    }

    /** The text there; empty when there is none. */
    std::string textAt(const Place& place) const;

    /** At every service: an object with two names is still one object. */
    void change(const Place& place, const Value& value) const;

  private:
    const std::set<Behaviour> behaviours_;
    const Services& services_;
};

} // namespace morvath::sim
