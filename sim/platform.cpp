// SPDX-License-Identifier: Apache-2.0
#include "sim/platform.hpp"

#include "sim/descriptor.hpp"
#include "sim/mapper.hpp"
#include "sim/service.hpp"

#include <pthread.h>
#include <signal.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <map>
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

int stopLoop(sd_event_source* source, int, std::uint32_t, void*)
{
    return sd_event_exit(sd_event_source_get_event(source), 0);
}

/** Signals are for the thread that the program waits for them with. */
std::thread startWithoutSignals(sd_event* event)
{
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    std::thread thread([event] { sd_event_loop(event); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return thread;
}

std::map<std::string, ObjectTree> treesByService(const Scenario& scenario)
{
    std::map<std::string, ObjectTree> trees;
    for (const Object& object : scenario.objects())
    {
        for (const Owner& owner : object.owners)
        {
            trees[owner.service].add(object.path, owner.interfaces);
        }
    }
    return trees;
}

} // namespace

class Platform::Implementation
{
  public:
    Implementation(const Scenario& scenario, const std::string& busAddress,
                   CallSink sink) :
        log(std::move(sink)),
        faults(scenario.faults()),
        machine(scenario.behaviours(), services),
        surroundings{event.get(),
                     busAddress,
                     log,
                     faults,
                     machine,
                     mutex,
                     [this] { updateMapper(); },
                     [this] { reportLoss(); }}
    {
        startServices(scenario);
        sd_event_source* source = nullptr;
        check(sd_event_add_io(event.get(), &source, stop.get(), EPOLLIN,
                              stopLoop, nullptr),
              "sd_event_add_io");
        stopSource.reset(source);
        thread = startWithoutSignals(event.get());
    }

    ~Implementation()
    {
        eventfd_write(stop.get(), 1);
        thread.join();
    }

    // The order matters: what is used stands before its users.
    CallLog log;
    FaultTable faults;
    const Machine machine;
    std::mutex mutex;
    const Event event = newEvent();
    const Descriptor stop = newEventDescriptor();
    const Descriptor busLost = newEventDescriptor();
    const Surroundings surroundings;
    std::vector<std::unique_ptr<Service>> services;
    std::unique_ptr<Mapper> mapper;
    EventSource stopSource;
    std::thread thread;

  private:
    void startServices(const Scenario& scenario)
    {
        for (auto& [name, objects] : treesByService(scenario))
        {
            services.push_back(std::make_unique<Service>(surroundings, name,
                                                         std::move(objects)));
            services.back()->start();
        }
        if (scenario.hasMapper())
        {
            // The last name to appear, so whoever waits for the mapper finds
            // everything else there.
            mapper = std::make_unique<Mapper>(surroundings);
            updateMapper();
            mapper->start();
        }
    }

    void updateMapper()
    {
        if (mapper)
        {
            mapper->update(services);
        }
    }

    void reportLoss()
    {
        eventfd_write(busLost.get(), 1);
    }
};

Platform::Platform(const Scenario& scenario, const std::string& busAddress,
                   CallSink sink) :
    implementation_(
        std::make_unique<Implementation>(scenario, busAddress, std::move(sink)))
{}

Platform::~Platform() = default;

std::vector<Call> Platform::calls() const
{
    return implementation_->log.calls();
}

void Platform::clearCalls()
{
    implementation_->log.clear();
}

nlohmann::ordered_json Platform::property(const std::string& service,
                                          const std::string& path,
                                          const std::string& interface,
                                          const std::string& name) const
{
    const std::lock_guard lock(implementation_->mutex);
    for (const auto& candidate : implementation_->services)
    {
        Node* node = candidate->name() == service
                         ? candidate->objects().find(path)
                         : nullptr;
        const Property* property =
            node == nullptr ? nullptr : node->property(interface, name);
        if (property != nullptr)
        {
            return toJson(property->value);
        }
    }
    throw std::out_of_range("no property " + name + " of " + interface +
                            " on " + path + " at " + service);
}

std::size_t Platform::objectCount() const
{
    std::size_t count = 0;
    for (const auto& service : implementation_->services)
    {
        count += service->objects().objectCount();
    }
    return count;
}

std::size_t Platform::serviceCount() const
{
    return implementation_->services.size();
}

int Platform::busLostDescriptor() const
{
    return implementation_->busLost.get();
}

} // namespace morvath::sim
