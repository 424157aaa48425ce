// SPDX-License-Identifier: Apache-2.0
#include "sim/service.hpp"

#include "sim/associations.hpp"
#include "sim/introspection.hpp"
#include "sim/properties.hpp"
#include "sim/settings.hpp"

#include <cstdint>
#include <ctime>
#include <exception>
#include <utility>

namespace morvath::sim
{

namespace
{

bool isMethodCall(sd_bus_message* message)
{
    std::uint8_t type = 0;
    check(sd_bus_message_get_type(message, &type), "sd_bus_message_get_type");
    return type == SD_BUS_MESSAGE_METHOD_CALL;
}

void sendError(const Request& request, const std::string& name,
               const char* text)
{
    const sd_bus_error error{name.c_str(), text, 0};
    check(sd_bus_reply_method_error(request.message, &error),
          "sd_bus_reply_method_error");
}

BusError unknownObject(const Request& request)
{
    return {SD_BUS_ERROR_UNKNOWN_OBJECT,
            "Unknown object '" + std::string(request.path) + "'."};
}

void send(const Message& reply)
{
    check(sd_bus_send(nullptr, reply.get(), nullptr), "sd_bus_send");
}

} // namespace

Service::Service(const Surroundings& surroundings, std::string name,
                 ObjectTree objects) :
    surroundings_(surroundings),
    name_(std::move(name)),
    objects_(std::move(objects))
{}

Service::~Service()
{
    // Without waiting for the bus the name would still be taken for a while.
    if (bus_)
    {
        sd_bus_release_name(bus_.get(), name_.c_str());
    }
}

void Service::start()
{
    bus_ = openBus(surroundings_.busAddress);
    // The end of the loop must leave the connection to the destructor.
    check(sd_bus_set_close_on_exit(bus_.get(), false),
          "sd_bus_set_close_on_exit");
    // A filter with tables of our own: thousands of registered objects would
    // take sd-bus long to set up and could not be changed by a fault.
    check(sd_bus_add_filter(bus_.get(), nullptr, onMessage, this),
          "sd_bus_add_filter");
    const std::string operation = "taking the bus name " + name_;
    check(sd_bus_request_name(bus_.get(), name_.c_str(), 0), operation.c_str());
    check(sd_bus_attach_event(bus_.get(), surroundings_.event,
                              SD_EVENT_PRIORITY_NORMAL),
          "sd_bus_attach_event");
}

void Service::change(std::string_view path, std::string_view interface,
                     Property& property, const Value& value)
{
    // Generated bindings say nothing about a value that stays as it is.
    if (property.value == value)
    {
        return;
    }
    property.value = value;
    if (interface == associationDefinitions)
    {
        surroundings_.objectsChanged();
    }
    // sd-bus announces no property that it keeps out of GetAll.
    if (property.hidden)
    {
        return;
    }
    sd_bus_message* signal = nullptr;
    check(sd_bus_message_new_signal(
              bus_.get(), &signal, std::string(path).c_str(),
              propertiesInterface.data(), "PropertiesChanged"),
          "sd_bus_message_new_signal");
    const Message owned(signal);
    check(sd_bus_message_append(signal, "s", std::string(interface).c_str()),
          "sd_bus_message_append");
    const Value entry{"{sv}",
                      Value::Members{{"s", property.name},
                                     {"v", Value::Members{property.value}}}};
    append(signal, {"a{sv}", Value::Members{entry}});
    append(signal, {"as", Value::Members{}});
    send(owned);
}

Message Service::callMethod(const Request&)
{
    return nullptr;
}

std::string_view Service::describeMethods(std::string_view) const
{
    return {};
}

int Service::onMessage(sd_bus_message* message, void* self,
                       sd_bus_error*) noexcept
{
    auto& service = *static_cast<Service*>(self);
    try
    {
        return service.receive(message);
    }
    catch (const std::exception&)
    {
        // Only sending is left to fail: the bus or the caller is gone.
        return 1;
    }
}

int Service::receive(sd_bus_message* message)
{
    if (sd_bus_message_is_signal(message, "org.freedesktop.DBus.Local",
                                 "Disconnected") > 0)
    {
        surroundings_.busLost();
    }
    if (!isMethodCall(message))
    {
        return 0;
    }
    const std::lock_guard lock(surroundings_.mutex);
    const Request request(message, name_);
    surroundings_.log.add(
        {std::string(request.destination), std::string(request.path),
         std::string(request.interface), std::string(request.member),
         request.arguments ? toJson(*request.arguments) : Json()});
    const Verdict verdict =
        surroundings_.faults.judge(request, objects_.find(request.path));
    if (verdict.effect != nullptr)
    {
        suffer(verdict, request);
        return 1;
    }
    // sd-bus itself answers these.
    if (request.interface == peerInterface)
    {
        return 0;
    }
    answer(request, verdict.missing);
    return 1;
}

void Service::suffer(const Verdict& verdict, const Request& request)
{
    const FaultEffect& effect = *verdict.effect;
    if (const auto* error = std::get_if<ErrorReply>(&effect))
    {
        sendError(request, error->name, error->message.c_str());
    }
    else if (const auto* wait = std::get_if<Delay>(&effect))
    {
        delay(request.message, verdict.missing, wait->time);
    }
    else if (const auto* fixed = std::get_if<FixedReply>(&effect))
    {
        const Message reply = newReply(request.message);
        if (fixed->body)
        {
            append(reply.get(), *fixed->body);
        }
        send(reply);
    }
    else if (std::holds_alternative<Death>(effect))
    {
        die();
    }
    else if (std::holds_alternative<VanishedObject>(effect))
    {
        const BusError error = unknownObject(request);
        sendError(request, error.name(), error.what());
    }
}

void Service::answer(const Request& request, const MissingProperties& missing)
{
    try
    {
        send(reply(request, missing));
    }
    catch (const BusError& error)
    {
        sendError(request, error.name(), error.what());
    }
    catch (const std::exception& error)
    {
        sendError(request, SD_BUS_ERROR_FAILED, error.what());
    }
}

Message Service::reply(const Request& request, const MissingProperties& missing)
{
    Node* node = objects_.find(request.path);
    if (node == nullptr)
    {
        throw unknownObject(request);
    }
    if (request.isFor(introspectableInterface, "Introspect"))
    {
        request.expectArguments("");
        Message reply = newReply(request.message);
        append(reply.get(),
               {"s", introspectionXml(*node, describeMethods(request.path))});
        return reply;
    }
    if (request.isFor(peerInterface, "Ping"))
    {
        return newReply(request.message);
    }
    if (!node->isObject)
    {
        throw unknownObject(request);
    }
    if (request.isFor(propertiesInterface, "Get"))
    {
        return getProperty(request, *node, missing);
    }
    if (request.isFor(propertiesInterface, "GetAll"))
    {
        return getAllProperties(request, *node, missing);
    }
    if (request.isFor(propertiesInterface, "Set"))
    {
        return setProperty(request, *node, missing);
    }
    if (Message own = callMethod(request))
    {
        return own;
    }
    throw BusError(SD_BUS_ERROR_UNKNOWN_METHOD,
                   "Unknown method " + std::string(request.member) +
                       " or interface " + std::string(request.interface) + ".");
}

Message Service::setProperty(const Request& request, Node& node,
                             const MissingProperties& missing)
{
    Property& property = settableProperty(request, node, missing);
    apply({surroundings_.machine, *this, request.path, request.text(0),
           property, newValue(request)});
    return newReply(request.message);
}

void Service::delay(sd_bus_message* message, const MissingProperties& missing,
                    std::chrono::milliseconds time)
{
    Delayed& call = delayed_.emplace_back(
        Delayed{this, Message(sd_bus_message_ref(message)), missing, nullptr});
    sd_event_source* timer = nullptr;
    const std::chrono::microseconds wait = time;
    check(sd_event_add_time_relative(
              surroundings_.event, &timer, CLOCK_MONOTONIC,
              static_cast<std::uint64_t>(wait.count()), 1000, onTimer, &call),
          "sd_event_add_time_relative");
    call.timer.reset(timer);
}

int Service::onTimer(sd_event_source*, std::uint64_t, void* delayed) noexcept
{
    auto& call = *static_cast<Delayed*>(delayed);
    Service& service = *call.service;
    const std::lock_guard lock(service.surroundings_.mutex);
    try
    {
        // The arguments have been read once, for the log.
        check(sd_bus_message_rewind(call.message.get(), true),
              "sd_bus_message_rewind");
        const Request request(call.message.get(), service.name_);
        service.answer(request, call.missing);
    }
    catch (const std::exception&)
    {
        // As above: there is nobody left to tell.
    }
    service.delayed_.remove_if(
        [&](const Delayed& other) { return &other == &call; });
    return 0;
}

void Service::die()
{
    delayed_.clear();
    // Without the service the mapper must not list its objects, not even to
    // a caller who asks as soon as the bus has noticed.
    Bus dying = std::move(bus_);
    surroundings_.objectsChanged();
}

} // namespace morvath::sim
