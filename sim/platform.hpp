// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/process.hpp"
#include "sim/service.hpp"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace morvath::sim
{

class Mapper;

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
        /** Called on the platform's thread when the bus goes away. */
        std::function<void()> busLost{};
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

    /** From the next call on, faults count anew, too. */
    void clearCalls();

    /**
     * The present value, in the form that scenarios use.
     * @throws std::out_of_range  there is no such property
     */
    Json property(const std::string& service, const std::string& path,
                  const std::string& interface, const std::string& name) const;

    /** The places of the faults that no call has met. */
    std::vector<std::string> unusedFaults() const;

  private:
    using Clock = std::chrono::steady_clock;

    Platform(const Scenario& scenario, const Live& options, bool keepsCalls);

    void serve();
    void moveTo(Seconds moment);
    uint64_t untilNextChange() const;

    // The order matters: what is used stands before its users.
    /** Held while calls are answered. */
    mutable std::mutex mutex;
    std::vector<Call> kept;
    /** Ends the thread's waiting. */
    const Descriptor wake;
    const EventLoop events;
    Services services;
    Schedule schedule;
    std::unique_ptr<Mapper> mapper;
    const bool isLive;
    bool ended = false;
    Clock::time_point start;
    Seconds wanted{};
    Seconds time{};
    std::condition_variable reached;
    std::thread thread;
};

} // namespace morvath::sim
