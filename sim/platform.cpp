// SPDX-License-Identifier: Apache-2.0
#include "sim/platform.hpp"

#include "sim/changes.hpp"
#include "sim/mapper.hpp"
#include "sim/process.hpp"

#include <nlohmann/json.hpp>

#include <pthread.h>
#include <signal.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <ctime>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

namespace morvath::sim
{
namespace
{

Event newEvent()
{
    sd_event* event = nullptr;
    check(sd_event_new(&event), "sd_event_new");
    return Event(event);
}

Descriptor newEventDescriptor()
{
    return {eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "eventfd"};
}

EventSource newSource(sd_event* event, const Descriptor& descriptor,
                      sd_event_io_handler_t handler, void* data)
{
    sd_event_source* source = nullptr;
    check(sd_event_add_io(event, &source, descriptor.get(), EPOLLIN, handler,
                          data),
          "sd_event_add_io");
    return EventSource(source);
}

} // namespace

class Platform::Implementation
{
  public:
    Implementation(const Scenario& scenario, const Live& options,
                   bool keepsCalls) :
        services{.event = event.get(),
                 .busAddress = options.busAddress,
                 .faults = Faults(scenario.faults),
                 .behaviours = scenario.behaviours,
                 .log = keepsCalls ? keeper() : options.log,
                 .logsOutcome = !keepsCalls && options.log,
                 .objectsChanged = [this] { updateMapper(); },
                 .busLost = [this] { eventfd_write(busLost.get(), 1); },
                 .haveManagers = !scenario.changes.empty()},
        schedule(
            scenario, services,
            options.raidChanged ? options.raidChanged : [](const Json&) {}),
        isLive(!keepsCalls)
    {
        startServices(scenario);
        told = newSource(event.get(), tell, onTold, this);
        if (isLive)
        {
            start = now();
            sd_event_source* source = nullptr;
            check(sd_event_add_time(event.get(), &source, CLOCK_MONOTONIC,
                                    UINT64_MAX, 0, onTime, this),
                  "sd_event_add_time");
            timer.reset(source);
            setTimer();
        }
        thread = startWithoutSignals();
    }

    ~Implementation()
    {
        {
            const std::lock_guard lock(mutex);
            ended = true;
        }
        eventfd_write(tell.get(), 1);
        thread.join();
    }

    void advance(Seconds seconds)
    {
        std::unique_lock lock(mutex);
        wanted += seconds;
        eventfd_write(tell.get(), 1);
        reached.wait(lock, [this] { return time == wanted; });
    }

    // The order matters: what is used stands before its users.
    /** Held while calls are answered. */
    mutable std::mutex mutex;
    std::vector<Call> calls;
    const Event event = newEvent();
    const Descriptor tell = newEventDescriptor();
    const Descriptor busLost = newEventDescriptor();
    Services services;

  private:
    CallSink keeper()
    {
        return [this](const Call& call) { calls.push_back(call); };
    }

    void startServices(const Scenario& scenario)
    {
        for (const auto& object : scenario.objects)
        {
            services.publish(object);
        }
        std::ranges::sort(services.all, {},
                          [](const auto& service) -> const std::string& {
                              return service->name;
                          });
        for (const auto& service : services.all)
        {
            service->start();
        }
        if (scenario.hasMapper)
        {
            // The last name to appear, so whoever waits for the mapper finds
            // everything else there.
            mapper = std::make_unique<Mapper>(services);
            mapper->update();
            mapper->start();
        }
    }

    void updateMapper()
    {
        if (mapper)
        {
            mapper->update();
        }
    }

    /** Signals are for the thread that the program waits for them with. */
    std::thread startWithoutSignals()
    {
        sigset_t all;
        sigset_t before;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
        std::thread started([this] { serve(); });
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
        return started;
    }

    void serve()
    {
        std::unique_lock lock(mutex);
        for (auto result = 0; !ended && result >= 0;)
        {
            result = sd_event_prepare(event.get());
            if (result == 0)
            {
                lock.unlock();
                result = sd_event_wait(event.get(), UINT64_MAX);
                lock.lock();
            }
            if (result > 0)
            {
                result = sd_event_dispatch(event.get());
            }
        }
    }

    Seconds now() const
    {
        uint64_t microseconds = 0;
        check(sd_event_now(event.get(), CLOCK_MONOTONIC, &microseconds),
              "sd_event_now");
        return std::chrono::microseconds(microseconds);
    }

    /** To the next change, if there is one. */
    void setTimer()
    {
        if (!schedule.empty())
        {
            const auto due = std::chrono::ceil<std::chrono::microseconds>(
                start + schedule.next());
            check(sd_event_source_set_time(timer.get(),
                                           static_cast<uint64_t>(due.count())),
                  "sd_event_source_set_time");
            check(sd_event_source_set_enabled(timer.get(), SD_EVENT_ONESHOT),
                  "sd_event_source_set_enabled");
        }
    }

    void moveTo(Seconds moment)
    {
        try
        {
            schedule.advance(moment);
        }
        catch (const std::exception&)
        {
            // Only sending is left to fail: the bus is gone.
        }
        time = moment;
    }

    static int onTime(sd_event_source*, uint64_t, void* self)
    {
        auto& own = *static_cast<Implementation*>(self);
        own.moveTo(own.now() - own.start);
        own.setTimer();
        return 0;
    }

    static int onTold(sd_event_source*, int, uint32_t, void* self)
    {
        auto& own = *static_cast<Implementation*>(self);
        eventfd_t count = 0;
        eventfd_read(own.tell.get(), &count);
        if (!own.isLive)
        {
            own.moveTo(own.wanted);
            own.reached.notify_all();
        }
        return 0;
    }

    Schedule schedule;
    const bool isLive;
    bool ended = false;
    Seconds start{};
    Seconds wanted{};
    Seconds time{};
    std::condition_variable reached;
    std::unique_ptr<Mapper> mapper;
    EventSource told;
    EventSource timer;
    std::thread thread;
};

Platform::Platform(const Scenario& scenario, const std::string& busAddress) :
    implementation(std::make_unique<Implementation>(
        scenario, Live{.busAddress = busAddress}, true))
{}

Platform::Platform(const Scenario& scenario, const Live& options) :
    implementation(std::make_unique<Implementation>(scenario, options, false))
{}

Platform::~Platform() = default;

void Platform::advance(Seconds time) { implementation->advance(time); }

std::vector<Call> Platform::calls() const
{
    const std::lock_guard lock(implementation->mutex);
    return implementation->calls;
}

void Platform::clearCalls()
{
    const std::lock_guard lock(implementation->mutex);
    implementation->calls.clear();
}

Json Platform::property(const std::string& service, const std::string& path,
                        const std::string& interface,
                        const std::string& name) const
{
    const std::lock_guard lock(implementation->mutex);
    for (const auto& candidate : implementation->services.all)
    {
        const auto* property = candidate->name == service
                                   ? candidate->find({path, interface, name})
                                   : nullptr;
        if (property)
        {
            return *property->value;
        }
    }
    throw std::out_of_range("no property " + name + " of " + interface +
                            " on " + path + " at " + service);
}

std::vector<std::string> Platform::unusedFaults() const
{
    const std::lock_guard lock(implementation->mutex);
    return implementation->services.faults.unused();
}

std::size_t Platform::objectCount() const
{
    const std::lock_guard lock(implementation->mutex);
    std::size_t count = 0;
    for (const auto& service : implementation->services.all)
    {
        count += service->paths().size();
    }
    return count;
}

std::size_t Platform::serviceCount() const
{
    return implementation->services.all.size();
}

int Platform::busLostDescriptor() const
{
    return implementation->busLost.get();
}

} // namespace morvath::sim
