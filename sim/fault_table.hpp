// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/fault.hpp"
#include "sim/object_tree.hpp"
#include "sim/request.hpp"

#include <string_view>
#include <vector>

namespace morvath::sim
{

/** The properties that are absent during one call. */
class MissingProperties
{
  public:
    void add(const FaultCondition& condition)
    {
        conditions_.push_back(&condition);
    }

    bool contains(std::string_view interface, std::string_view property) const;

  private:
    std::vector<const FaultCondition*> conditions_;
};

struct Verdict
{
    /** What happens instead of an answer; nullptr for an answer. */
    const FaultEffect* effect = nullptr;
    MissingProperties missing;
};

/** The faults of a running platform, with their counts of calls. */
class FaultTable
{
  public:
    explicit FaultTable(const std::vector<Fault>& faults);

    /**
     * All missing properties count; of the other faults the first decides.
     * @param[in] node  the node of the path, nullptr when there is none
     */
    Verdict judge(const Request& request, const Node* node);

  private:
    struct CountedFault
    {
        Fault fault;
        unsigned calls = 0;
    };

    std::vector<CountedFault> faults_;
};

} // namespace morvath::sim
