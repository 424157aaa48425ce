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

void waitFor(std::vector<pollfd>& files, Clock::time_point until)
{
    using namespace std::chrono;
    const auto rest = std::max(until - Clock::now(), Clock::duration());
    const timespec time{
        static_cast<time_t>(duration_cast<seconds>(rest).count()),
        static_cast<long>((rest % seconds(1)).count())};
    ppoll(files.data(), files.size(),
          until == Clock::time_point::max() ? nullptr : &time, nullptr);
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
    wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "eventfd"),
    services{.busAddress = options.busAddress,
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
        for (auto* service : ready(lock))
        {
            service->work();
        }
        moveTo(isLive ? Clock::now() - start : wanted);
        reached.notify_all();
    }
}

/** Waits, unlocked, for those who have work. */
std::vector<Service*> Platform::ready(std::unique_lock<std::mutex>& lock)
{
    std::vector<Service*> all;
    std::vector<pollfd> files{{wake.get(), POLLIN, 0}};
    auto until = nextChange();
    const auto add = [&](Service& service) {
        all.push_back(&service);
        files.push_back(service.interest());
        until = std::min(until, service.due());
    };
    for (const auto& service : services.all)
    {
        add(*service);
    }
    if (mapper)
    {
        add(*mapper);
    }
    lock.unlock();
    waitFor(files, until);
    lock.lock();
    if (files.front().revents)
    {
        eventfd_t count = 0;
        eventfd_read(wake.get(), &count);
    }
    const auto now = Clock::now();
    std::vector<Service*> ready;
    for (std::size_t index = 0; index < all.size(); ++index)
    {
        if (files[index + 1].revents || all[index]->due() <= now)
        {
            ready.push_back(all[index]);
        }
    }
    return ready;
}

Clock::time_point Platform::nextChange() const
{
    if (!isLive || schedule.empty())
    {
        return Clock::time_point::max();
    }
    constexpr Seconds longest(1e9);
    return start + std::chrono::ceil<Clock::duration>(
                       std::min(schedule.next(), longest));
}

void Platform::moveTo(Seconds moment)
{
    try
    {
        schedule.advance(moment);
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
