// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json.hpp"
#include "sim/record/bus_reader.hpp"
#include "sim/record/omissions.hpp"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace morvath::sim
{

/** Turns live objects into the objects of a scenario. */
class ObjectRecorder
{
  public:
    ObjectRecorder(BusReader& reader, Omissions& omissions) :
        reader_(reader),
        omissions_(omissions)
    {}

    /** @param[in] wanted  the services to record; empty: all */
    Json record(const MappedObjects& objects,
                const std::set<std::string>& wanted);

  private:
    std::optional<Json> recordOwner(const Source& source,
                                    const std::vector<std::string>& interfaces,
                                    const MappedObjects& objects);

    BusReader& reader_;
    Omissions& omissions_;
    std::set<std::string> lostServices_;
};

} // namespace morvath::sim
