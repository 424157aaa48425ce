// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/scenario.hpp"
#include "sim/sd_bus.hpp"

#include <chrono>
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

/** One method call that reached a service. */
struct Call
{
    std::chrono::system_clock::time_point time;
    /** The caller's unique name. */
    std::string caller;
    /** The destination as the caller wrote it. */
    std::string service;
    std::string path;
    std::string interface;
    std::string member;
    /** A list; null when the arguments cannot be shown. */
    SharedJson arguments;
    /** "reply", the name of an error, or what a fault did instead. */
    std::string outcome{};
    /** The place of the fault in the scenario; empty without one. */
    std::string fault{};
};

/** Receives calls as they come, on the thread that serves them. */
using CallSink = std::function<void(const Call&)>;

/** All services of a platform, and what they share. */
struct Services
{
    /** Answers calls while it runs. */
    sd_event* events;
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
    /** Interfaces of one form share a table, which stays in the caches. */
    std::map<std::string, std::vector<sd_bus_vtable>> tables{};
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

/**
 * Whether sd-bus names the interface of an object first that was registered
 * last: release 257 does, 262 does not. Asks on a connection without a name.
 */
bool listsLastFirst(sd_bus* bus);

/** A bus connection that owns a name and publishes objects. */
class Service
{
  public:
    union Raw
    {
        Service* service;
        uint64_t value;
        const char* text;
    };

    struct Published
    {
        std::vector<Interface> interfaces;
        /**
         * What sd-bus reads by itself, side by side: of each interface its
         * service, and then the values of its properties.
         */
        std::vector<Raw> raw{};
        /** As it was published: a text that changes is somewhere else. */
        std::string texts{};
        /** Without these properties at the moment. */
        Decision without{};
        std::vector<Slot> slots{};
    };

    Service(Services& services, std::string name);
    virtual ~Service();

    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    /** Connects and takes the name. */
    void start();

    /** Leaves the bus without another answer. */
    void die();

    bool isAlive() const noexcept { return bus != nullptr; }

    /** By their paths. */
    const auto& objects() const noexcept { return published; }

    /** Publishes an object, in place of one that has the path. */
    void add(const std::string& path, std::vector<Interface> interfaces);
    void remove(const std::string& path) { published.erase(path); }

    /** Signals that an object has come, or is going. */
    void announce(const std::string& path,
                  int (*emit)(sd_bus* bus, const char* path)) const;

    Property* find(const Place& place);

    /** Does what a Set call wants, or throws BusError. */
    void set(std::string_view path, std::string_view interface,
             Property& property, const Json& value);

    /** Gives a property another value and announces it. */
    void change(std::string_view path, std::string_view interface,
                Property& property, const Json& value);

    const std::string name;

  protected:
    /** Called with a new connection, before it has the name. */
    virtual void prepare() {}

    Slot addTable(const std::string& path, const std::string& interface,
                  const sd_bus_vtable* table, void* userdata);

    Services& services;

  private:
    /** A call that is answered later. */
    struct Held
    {
        Service* service;
        Message message;
        Call call;
        Decision decision;
        /** Sends it again. */
        Timer timer{};
        Slot reply{};
        uint64_t cookie = 0;
    };

    int receive(sd_bus_message* message);
    int decide(sd_bus_message* message);
    void meet(const Fault& fault, sd_bus_message* message, Call& call);
    void refuse(sd_bus_message* message, Call& call, const std::string& error,
                const std::string& text);
    void logOutcome(Call& call, const std::string& outcome);
    void hold(Held call, std::chrono::microseconds delay);
    void sendAgain(Held& call);
    void answer(sd_bus_message* reply);
    void leaveOut(std::string_view path, const Decision& decision);
    void registerAll(const std::string& path, Published& object);
    const sd_bus_vtable* tableOf(const Interface& interface,
                                 const Decision& without);

    std::map<std::string, Published, std::less<>> published;
    Bus bus;
    std::list<Held> held;
};

} // namespace morvath::sim
