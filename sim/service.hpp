// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/call_log.hpp"
#include "sim/fault_table.hpp"
#include "sim/machine.hpp"
#include "sim/object_tree.hpp"
#include "sim/request.hpp"

#include <chrono>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <string_view>

namespace morvath::sim
{

/** What all services of a platform share. */
struct Surroundings
{
    sd_event* event;
    std::string busAddress;
    CallLog& log;
    FaultTable& faults;
    const Machine& machine;
    /** Held while a call is answered. */
    std::mutex& mutex;
    /** A service died or published other associations. */
    std::function<void()> objectsChanged;
    /** The bus itself went away. */
    std::function<void()> busLost;
};

/** A bus connection that owns a name and publishes objects. */
class Service
{
  public:
    Service(const Surroundings& surroundings, std::string name,
            ObjectTree objects);
    virtual ~Service();

    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    /** Connects and takes the name; calls are answered by the event loop. */
    void start();

    const std::string& name() const noexcept
    {
        return name_;
    }

    bool isAlive() const noexcept
    {
        return bus_ != nullptr;
    }

    ObjectTree& objects() noexcept
    {
        return objects_;
    }

    const ObjectTree& objects() const noexcept
    {
        return objects_;
    }

    /** Gives a property another value and announces it. */
    void change(std::string_view path, std::string_view interface,
                Property& property, const Value& value);

  protected:
    /** Methods of its own; no message when it has no such method. */
    virtual Message callMethod(const Request& request);

    /** The introspection data of those methods. */
    virtual std::string_view describeMethods(std::string_view path) const;

  private:
    /** A call that waits for its time. */
    struct Delayed
    {
        Service* service;
        Message message;
        MissingProperties missing;
        EventSource timer;
    };

    static int onMessage(sd_bus_message* message, void* self,
                         sd_bus_error* error) noexcept;
    static int onTimer(sd_event_source* timer, std::uint64_t now,
                       void* delayed) noexcept;

    int receive(sd_bus_message* message);
    void suffer(const Verdict& verdict, const Request& request);
    void answer(const Request& request, const MissingProperties& missing);
    Message reply(const Request& request, const MissingProperties& missing);
    Message setProperty(const Request& request, Node& node,
                        const MissingProperties& missing);
    void delay(sd_bus_message* message, const MissingProperties& missing,
               std::chrono::milliseconds time);
    void die();

    const Surroundings& surroundings_;
    const std::string name_;
    ObjectTree objects_;
    Bus bus_;
    std::list<Delayed> delayed_;
};

} // namespace morvath::sim
