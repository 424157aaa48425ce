// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/call_log.hpp"
#include "sim/scenario.hpp"
#include "sim/sd_bus.hpp"

#include <functional>
#include <list>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace morvath::sim
{

class Service;

/** A property, whichever services publish it. */
struct Place
{
    std::string_view path;
    std::string_view interface;
    std::string_view property;
};

/** All services of a platform, and what they share. */
struct Services
{
    sd_event* event;
    std::string busAddress;
    Faults faults;
    std::set<std::string> behaviours;
    CallSink log;
    /** Whether the log waits for what becomes of each call. */
    bool logsOutcome;
    /** A service came or went, or published other objects or associations. */
    std::function<void()> objectsChanged;
    /** The bus itself went away. */
    std::function<void()> busLost;
    /** Whether objects come and go: then services have an ObjectManager. */
    bool haveManagers = false;
    std::vector<std::unique_ptr<Service>> all{};

    /** Null when there is none of that name. */
    Service* named(std::string_view name) const;

    /** Publishes an object; a service that is new is on no bus yet. */
    void publish(const Object& object);

    /** While they are on the bus: an object comes or goes, with signals. */
    void add(const Object& object);
    void remove(const std::string& path);

    /** The text there; empty when there is none. */
    std::string textAt(const Place& place) const;

    /** At every service: an object with two names is still one object. */
    void change(const Place& place, const Json& value) const;
};

/** A bus connection that owns a name and publishes objects. */
class Service
{
  public:
    Service(Services& services, std::string name);
    virtual ~Service();

    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    /** Connects and takes the name; calls are answered by the event loop. */
    void start();

    /** Leaves the bus without another answer. */
    void die();

    bool isAlive() const noexcept { return bus != nullptr; }

    sd_bus* connection() const noexcept { return bus.get(); }

    /** Publishes an object, in place of one that has the path. */
    void add(const std::string& path, std::vector<Interface> interfaces);
    void remove(const std::string& path);

    /** Signals that an object has come, or is going. */
    void announce(const std::string& path,
                  int (*emit)(sd_bus* bus, const char* path)) const;

    /** The interfaces of an object; null when there is none. */
    const std::vector<Interface>* find(std::string_view path) const;
    Property* find(const Place& place);

    /** Does what a Set call wants, or throws BusError. */
    void set(std::string_view path, std::string_view interface,
             Property& property, const Json& value);

    /** Gives a property another value and announces it. */
    void change(std::string_view path, std::string_view interface,
                Property& property, const Json& value);

    /** The paths of all objects, in their order. */
    std::vector<std::string_view> paths() const;

    const std::string name;

  protected:
    /** Called with a new connection, before it has the name. */
    virtual void prepare() {}

    Services& services;

  private:
    /** An interface as sd-bus knows it. */
    struct Registration
    {
        std::vector<sd_bus_vtable> table;
        Slot slot;
    };

    struct Published
    {
        std::vector<Interface> interfaces;
        std::vector<Registration> registrations;
        Slot presence;
        /** Without these properties at the moment. */
        Decision without;
    };

    /** A call that is answered later. */
    struct Held
    {
        Service& service;
        Message message;
        Call call;
        Decision decision;
        EventSource timer{};
        Slot reply{};
        uint64_t cookie = 0;

        Held(Service& service, Message message, Call call, Decision decision) :
            service(service),
            message(std::move(message)),
            call(std::move(call)),
            decision(std::move(decision))
        {}
    };

    static int onMessage(sd_bus_message* message, void* self,
                         sd_bus_error* error) noexcept;
    static int onTimer(sd_event_source* timer, uint64_t now,
                       void* held) noexcept;
    static int onReply(sd_bus_message* reply, void* held,
                       sd_bus_error* error) noexcept;

    int receive(sd_bus_message* message);
    int receiveAgain(sd_bus_message* message);
    int decide(sd_bus_message* message);
    void meet(const Fault& fault, sd_bus_message* message, Call& call);
    void hold(sd_bus_message* message, Call&& call, Decision&& decision);
    void logOutcome(Call& call, const std::string& outcome);
    void release(const Held& held);
    void sendAgain(Held& held);
    void answer(Held& held, sd_bus_message* reply);
    void leaveOut(std::string_view path, const Decision& decision);
    void registerAll(const std::string& path, Published& object);
    void registerInterface(const std::string& path, Interface& interface,
                           Registration& registration, const Decision& without);

    std::map<std::string, Published, std::less<>> objects;
    Bus bus;
    std::list<Held> held;
};

} // namespace morvath::sim
