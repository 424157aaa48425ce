// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json_value.hpp"

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace morvath::sim
{

struct Scenario;
struct Services;

using Seconds = std::chrono::duration<double>;

/** Something that happens to a machine at a time. */
struct Change
{
    /** Since the start. */
    Seconds after{};
    /** Zero: only once. */
    Seconds every{};
    /** What it says, in the form of the document, checked. */
    SharedJson what{};
};

/** Reads the changes of a machine that is read as far as its objects. */
std::vector<Change> readChanges(const Json& list, const SharedJson& document,
                                const Scenario& scenario);

/** The changes of a running platform, in the order of their times. */
class Schedule
{
  public:
    /** @param[in] raidChanged  gets every new RAID section */
    Schedule(const Scenario& scenario, Services& services,
             std::function<void(const Json&)> raidChanged);

    bool empty() const noexcept { return pending.empty(); }

    /** When the next change is due, since the start. */
    Seconds next() const;

    /**
     * Makes all changes up to a time since the start.
     * @param[in] skips  of what repeats itself, only the first one
     */
    void advance(Seconds time, bool skips);

  private:
    void make(const SharedJson& change);

    std::vector<Change> pending;
    Services& services;
    SharedJson raid;
    std::function<void(const Json&)> raidChanged;
};

} // namespace morvath::sim
