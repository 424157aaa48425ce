// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/call_log.hpp"
#include "sim/scenario.hpp"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace morvath::sim
{

/** Serves a scenario on a bus, on a thread and connections of its own. */
class Platform
{
  public:
    /**
     * Returns when all names are owned and served. Calls are kept; what the
     * scenario says to change waits for advance().
     * @param[in] busAddress  empty: the bus that the environment names, as
     *                        sd_bus_open finds it
     * @throws std::system_error  no bus, or a name is taken
     */
    explicit Platform(const Scenario& scenario,
                      const std::string& busAddress = {});

    /** The same as a program does it: the machine changes as time goes by. */
    struct Live
    {
        std::string busAddress;
        /**
         * Gets every call with its outcome, which makes calls take a little
         * longer; empty: nobody does.
         */
        CallSink log{};
        /** Gets every RAID section that comes after the scenario's own. */
        std::function<void(const Json&)> raidChanged{};
    };

    Platform(const Scenario& scenario, const Live& options);

    /** Afterwards all names are free again. */
    ~Platform();

    Platform(const Platform&) = delete;
    Platform& operator=(const Platform&) = delete;

    /** Makes the changes of the next seconds; returns when they are made. */
    void advance(Seconds time);

    /** The calls so far, without their outcomes. */
    std::vector<Call> calls() const;
    void clearCalls();

    /**
     * The present value, in the form that scenarios use.
     * @throws std::out_of_range  there is no such property
     */
    Json property(const std::string& service, const std::string& path,
                  const std::string& interface, const std::string& name) const;

    /** The places of the faults that no call has met. */
    std::vector<std::string> unusedFaults() const;

    /** Objects, counted once per service that publishes them. */
    std::size_t objectCount() const;

    /** Services, the object mapper not among them. */
    std::size_t serviceCount() const;

    /** A descriptor that becomes readable when the bus goes away. */
    int busLostDescriptor() const;

  private:
    class Implementation;
    std::unique_ptr<Implementation> implementation;
};

} // namespace morvath::sim
