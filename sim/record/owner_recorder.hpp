// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json.hpp"
#include "sim/record/bus_reader.hpp"
#include "sim/record/introspected.hpp"
#include "sim/record/omissions.hpp"

#include <optional>
#include <string>
#include <vector>

namespace morvath::sim
{

/** Whether there are others than the standard interfaces. */
bool hasOwnInterfaces(const std::vector<std::string>& names);

/** Reads what one service publishes on one object. */
class OwnerRecorder
{
  public:
    /** All three must outlive this. */
    OwnerRecorder(BusReader& reader, Omissions& omissions,
                  const Source& source) :
        reader_(reader),
        omissions_(omissions),
        source_(source)
    {}

    /**
     * The interfaces as a scenario has them.
     * @param[in] names  those that the mapper names
     * @throws ServiceLost, ObjectGone
     */
    Json record(const std::vector<std::string>& names);

  private:
    void introspect();
    std::optional<Json> readInterface(const std::string& interface);
    Json listed(const std::string& interface);
    void addUnlisted(Json& properties, const std::string& interface,
                     bool isHidden);
    Json inOrder(const Json& interfaces);
    void tell(const std::string& what, const std::string& why);

    BusReader& reader_;
    Omissions& omissions_;
    const Source& source_;
    Introspected introspected_;
};

} // namespace morvath::sim
