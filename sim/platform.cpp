// SPDX-License-Identifier: Apache-2.0
#include "sim/platform.hpp"

#include "sim/mapper.hpp"

#include <nlohmann/json.hpp>
#include <sys/eventfd.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <stdexcept>

namespace morvath::sim
{
namespace
{

EventLoop newEventLoop()
{
    sd_event* events = nullptr;
    check(sd_event_new(&events), "sd_event_new");
    return EventLoop(events);
}

} // namespace

Platform::Platform(const Scenario& scenario, const std::string& busAddress) :
    Platform(scenario, {.busAddress = busAddress}, true)
{}

Platform::Platform(const Scenario& scenario, const Live& options) :
    Platform(scenario, options, false)
{}

Platform::Platform(const Scenario& scenario, const Live& options,
                   bool keepsCalls) :
    wake(eventfd(0, EFD_CLOEXEC), "eventfd"),
    events(newEventLoop()),
    services{.events = events.get(),
             .busAddress = options.busAddress,
             .faults = Faults(scenario.faults),
             .behaviours = scenario.behaviours,
             .log = options.log,
             .logsOutcome = !keepsCalls && options.log,
             .objectsChanged =
                 [this] {
                     if (mapper)
                     {
                         mapper->update();
                     }
                 },
             .busLost = options.busLost,
             .haveManagers = !scenario.changes.empty()},
    schedule(
        scenario, services,
        options.raidChanged ? options.raidChanged : [](const Json&) {}),
    isLive(!keepsCalls)
{
    if (keepsCalls)
    {
        services.log = [this](const Call& call) { kept.push_back(call); };
    }
    for (const auto& object : scenario.objects)
    {
        services.publish(object);
    }
    std::ranges::sort(services.all, {}, [](const auto& service) {
        return std::string_view(service->name);
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
    const auto wakeUp = [](sd_event_source*, int file, uint32_t, void*) {
        eventfd_t count = 0;
        return eventfd_read(file, &count);
    };
    check(sd_event_add_io(events.get(), nullptr, wake.get(), EPOLLIN, wakeUp,
                          nullptr));
    start = Clock::now();
    thread = std::thread([this] { serve(); });
}

Platform::~Platform()
{
    {
        const std::lock_guard lock(mutex);
        ended = true;
    }
    eventfd_write(wake.get(), 1);
    thread.join();
}

void Platform::serve()
{
    std::unique_lock lock(mutex);
    while (!ended)
    {
        auto state = sd_event_prepare(events.get());
        if (state == 0)
        {
            const auto rest = untilNextChange();
            lock.unlock();
            state = sd_event_wait(events.get(), rest);
            lock.lock();
        }
        if (state > 0)
        {
            sd_event_dispatch(events.get());
        }
        moveTo(isLive ? Clock::now() - start : wanted);
        reached.notify_all();
    }
}

/** In microseconds. */
uint64_t Platform::untilNextChange() const
{
    if (!isLive || schedule.empty())
    {
        return UINT64_MAX;
    }
    constexpr Seconds longest(1e9);
    const Seconds elapsed = Clock::now() - start;
    const auto rest = std::clamp(schedule.next() - elapsed, Seconds(), longest);
    return static_cast<uint64_t>(
        std::chrono::ceil<std::chrono::microseconds>(rest).count());
}

void Platform::moveTo(Seconds moment)
{
    try
    {
        // A machine that is too slow for them must still answer.
        schedule.advance(moment, isLive);
    }
    catch (const std::exception&)
    {
        // The bus is gone, or a RAID section would have become wrong.
    }
    time = moment;
}

void Platform::advance(Seconds seconds)
{
    std::unique_lock lock(mutex);
    wanted += seconds;
    eventfd_write(wake.get(), 1);
    reached.wait(lock, [this] { return time == wanted; });
}

std::vector<Call> Platform::calls() const
{
    const std::lock_guard lock(mutex);
    return kept;
}

void Platform::clearCalls()
{
    const std::lock_guard lock(mutex);
    kept.clear();
    services.faults.restart();
}

Json Platform::property(const std::string& service, const std::string& path,
                        const std::string& interface,
                        const std::string& name) const
{
    const std::lock_guard lock(mutex);
    auto* publisher = services.named(service);
    const auto* property =
        publisher ? publisher->find({path, interface, name}) : nullptr;
    if (!property)
    {
        throw std::out_of_range("no property " + name + " of " + interface +
                                " on " + path + " at " + service);
    }
    return *property->value;
}

std::vector<std::string> Platform::unusedFaults() const
{
    const std::lock_guard lock(mutex);
    return services.faults.unused();
}

} // namespace morvath::sim
