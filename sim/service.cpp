// SPDX-License-Identifier: Apache-2.0
#include "sim/service.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <exception>
#include <utility>

namespace morvath::sim
{
namespace
{

constexpr auto replied = "reply";
// Its table is hidden: sd-bus knows no object without an interface.
constexpr auto presenceInterface = "morvath.Presence";

bool isMethodCall(sd_bus_message* message)
{
    uint8_t type = 0;
    check(sd_bus_message_get_type(message, &type), "sd_bus_message_get_type");
    return type == SD_BUS_MESSAGE_METHOD_CALL;
}

std::string_view viewOf(const char* text)
{
    return text ? text : std::string_view();
}

CallKeys keysOf(sd_bus_message* message, std::string_view service)
{
    CallKeys keys{.service = service,
                  .path = viewOf(sd_bus_message_get_path(message)),
                  .interface = viewOf(sd_bus_message_get_interface(message)),
                  .member = viewOf(sd_bus_message_get_member(message)),
                  .propertyInterface = {},
                  .property = {}};
    const auto signature = viewOf(sd_bus_message_get_signature(message, true));
    if (keys.interface == propertiesInterface && signature.starts_with('s'))
    {
        const char* interface = nullptr;
        const char* property = nullptr;
        check(sd_bus_message_read_basic(message, 's', &interface),
              "sd_bus_message_read_basic");
        if (signature.starts_with("ss"))
        {
            check(sd_bus_message_read_basic(message, 's', &property),
                  "sd_bus_message_read_basic");
        }
        check(sd_bus_message_rewind(message, true), "sd_bus_message_rewind");
        keys.propertyInterface = interface;
        keys.property = viewOf(property);
    }
    return keys;
}

void sendError(sd_bus_message* message, const std::string& name,
               const std::string& text)
{
    const sd_bus_error error{name.c_str(), text.c_str(), 0};
    check(sd_bus_reply_method_error(message, &error),
          "sd_bus_reply_method_error");
}

Slot addTable(sd_bus* bus, const std::string& path,
              const std::string& interface, const sd_bus_vtable* table,
              void* userdata)
{
    sd_bus_slot* slot = nullptr;
    const auto operation = "publishing " + interface + " at " + path;
    check(sd_bus_add_object_vtable(bus, &slot, path.c_str(), interface.c_str(),
                                   table, userdata),
          operation.c_str());
    return Slot(slot);
}

void send(const Message& message)
{
    check(sd_bus_send(nullptr, message.get(), nullptr), "sd_bus_send");
}

int getProperty(sd_bus*, const char*, const char*, const char*,
                sd_bus_message* reply, void* property, sd_bus_error*) noexcept
{
    try
    {
        const auto& own = *static_cast<const Property*>(property);
        append(reply, own.type, *own.value);
        return 0;
    }
    catch (const std::exception&)
    {
        return -ENOMEM;
    }
}

int setProperty(sd_bus*, const char* path, const char* interface, const char*,
                sd_bus_message* value, void* property,
                sd_bus_error* error) noexcept
{
    try
    {
        auto& own = *static_cast<Property*>(property);
        own.publisher->set(path, interface, own, readJson(value));
        return 0;
    }
    catch (const BusError& refusal)
    {
        return sd_bus_error_set(error, refusal.name().c_str(), refusal.what());
    }
    catch (const std::exception& failure)
    {
        return sd_bus_error_set(error, SD_BUS_ERROR_FAILED, failure.what());
    }
}

sd_bus_vtable entryOf(const Property& property, std::size_t offset)
{
    const uint64_t flags = property.hidden
                               ? SD_BUS_VTABLE_HIDDEN
                               : SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE;
    const auto* name = property.name.c_str();
    const auto* type = property.type.c_str();
    if (property.readOnly)
    {
        return SD_BUS_PROPERTY(name, type, getProperty, offset, flags);
    }
    return SD_BUS_WRITABLE_PROPERTY(name, type, getProperty, setProperty,
                                    offset, flags | SD_BUS_VTABLE_UNPRIVILEGED);
}

} // namespace

std::string Services::textAt(const Place& place) const
{
    for (const auto& service : all)
    {
        const auto* property = service->find(place);
        if (property && property->value->is_string())
        {
            return property->value->get<std::string>();
        }
    }
    return {};
}

void Services::change(const Place& place, const Json& value) const
{
    for (const auto& service : all)
    {
        if (auto* property = service->find(place))
        {
            service->change(place.path, place.interface, *property, value);
        }
    }
}

Service* Services::named(std::string_view name) const
{
    const auto found = std::ranges::find_if(
        all, [&](const auto& service) { return service->name == name; });
    return found == all.end() ? nullptr : found->get();
}

void Services::publish(const Object& object)
{
    for (const auto& [name, interfaces] : object.owners)
    {
        auto* service = named(name);
        if (!service)
        {
            service =
                all.emplace_back(std::make_unique<Service>(*this, name)).get();
        }
        service->add(object.path, interfaces);
    }
}

void Services::add(const Object& object)
{
    remove(object.path);
    const auto known = all.size();
    publish(object);
    for (const auto& owner : object.owners)
    {
        named(owner.service)->announce(object.path, sd_bus_emit_object_added);
    }
    for (auto index = known; index < all.size(); ++index)
    {
        all[index]->start();
    }
    objectsChanged();
}

void Services::remove(const std::string& path)
{
    for (const auto& service : all)
    {
        if (service->find(path))
        {
            service->announce(path, sd_bus_emit_object_removed);
            service->remove(path);
        }
    }
    objectsChanged();
}

Service::Service(Services& services, std::string name) :
    name(std::move(name)),
    services(services)
{}

Service::~Service()
{
    // Without waiting for the bus the name would still be taken for a while.
    if (bus)
    {
        sd_bus_release_name(bus.get(), name.c_str());
    }
}

void Service::start()
{
    bus = openBus(services.busAddress);
    // The end of the loop must leave the connection to the destructor.
    check(sd_bus_set_close_on_exit(bus.get(), false),
          "sd_bus_set_close_on_exit");
    check(sd_bus_add_filter(bus.get(), nullptr, onMessage, this),
          "sd_bus_add_filter");
    for (auto& [path, object] : objects)
    {
        registerAll(path, object);
    }
    if (services.haveManagers)
    {
        check(sd_bus_add_object_manager(bus.get(), nullptr, "/"),
              "sd_bus_add_object_manager");
    }
    prepare();
    const auto operation = "taking the bus name " + name;
    check(sd_bus_request_name(bus.get(), name.c_str(), 0), operation.c_str());
    check(sd_bus_attach_event(bus.get(), services.event,
                              SD_EVENT_PRIORITY_NORMAL),
          "sd_bus_attach_event");
}

void Service::die()
{
    held.clear();
    for (auto& [path, object] : objects)
    {
        object.registrations.clear();
        object.presence.reset();
    }
    // Without the service the mapper must not list its objects, not even to
    // a caller who asks as soon as the bus has noticed.
    const auto dying = std::move(bus);
    services.objectsChanged();
}

void Service::add(const std::string& path, std::vector<Interface> interfaces)
{
    remove(path);
    auto& object = objects[path];
    object.interfaces = std::move(interfaces);
    for (auto& interface : object.interfaces)
    {
        for (auto& property : interface.properties)
        {
            property.publisher = this;
        }
    }
    if (bus)
    {
        registerAll(path, object);
    }
}

void Service::remove(const std::string& path) { objects.erase(path); }

void Service::announce(const std::string& path,
                       int (*emit)(sd_bus* bus, const char* path)) const
{
    const auto* interfaces = find(path);
    if (bus && interfaces && !interfaces->empty())
    {
        check(emit(bus.get(), path.c_str()), "InterfacesAdded or -Removed");
    }
}

const std::vector<Interface>* Service::find(std::string_view path) const
{
    const auto found = objects.find(path);
    return found == objects.end() ? nullptr : &found->second.interfaces;
}

Property* Service::find(const Place& place)
{
    const auto object = objects.find(place.path);
    if (object == objects.end())
    {
        return nullptr;
    }
    auto& interfaces = object->second.interfaces;
    const auto interface =
        std::ranges::find(interfaces, place.interface, &Interface::name);
    if (interface == interfaces.end())
    {
        return nullptr;
    }
    const auto property = std::ranges::find(interface->properties,
                                            place.property, &Property::name);
    return property == interface->properties.end() ? nullptr : &*property;
}

std::vector<std::string_view> Service::paths() const
{
    std::vector<std::string_view> names;
    for (const auto& [path, published] : objects)
    {
        names.push_back(path);
    }
    return names;
}

void Service::change(std::string_view path, std::string_view interface,
                     Property& property, const Json& value)
{
    // Generated bindings say nothing about a value that stays as it is.
    if (*property.value == value)
    {
        return;
    }
    property.value = std::make_shared<const Json>(value);
    if (interface == associationDefinitions)
    {
        services.objectsChanged();
    }
    // sd-bus announces no property that it keeps out of GetAll.
    if (bus && !property.hidden)
    {
        // Without success when a fault has taken the property away.
        sd_bus_emit_properties_changed(bus.get(), std::string(path).c_str(),
                                       std::string(interface).c_str(),
                                       property.name.c_str(), nullptr);
    }
}

void Service::registerAll(const std::string& path, Published& object)
{
    object.registrations = std::vector<Registration>(object.interfaces.size());
    for (std::size_t index = 0; index < object.interfaces.size(); ++index)
    {
        registerInterface(path, object.interfaces[index],
                          object.registrations[index], object.without);
    }
    if (object.interfaces.empty())
    {
        static constexpr sd_bus_vtable hidden[]{
            SD_BUS_VTABLE_START(SD_BUS_VTABLE_HIDDEN), SD_BUS_VTABLE_END};
        object.presence =
            addTable(bus.get(), path, presenceInterface, hidden, nullptr);
    }
}

void Service::registerInterface(const std::string& path, Interface& interface,
                                Registration& registration,
                                const Decision& without)
{
    static constexpr sd_bus_vtable none[]{SD_BUS_VTABLE_START(0),
                                          SD_BUS_VTABLE_END};
    // sd-bus puts a table behind others of its interface, and otherwise in
    // front of all: this one keeps the place while the other is exchanged.
    Slot place;
    if (registration.slot)
    {
        place = addTable(bus.get(), path, interface.name, none, nullptr);
        registration.slot.reset();
    }
    auto& table = registration.table;
    table = {SD_BUS_VTABLE_START(0)};
    for (std::size_t index = 0; index < interface.properties.size(); ++index)
    {
        const auto& property = interface.properties[index];
        if (!without.isMissing(interface.name, property.name))
        {
            table.push_back(entryOf(property, index * sizeof(Property)));
        }
    }
    table.push_back(SD_BUS_VTABLE_END);
    registration.slot = addTable(bus.get(), path, interface.name, table.data(),
                                 interface.properties.data());
}

void Service::leaveOut(std::string_view path, const Decision& decision)
{
    const auto found = objects.find(path);
    if (found == objects.end() ||
        found->second.without.missing == decision.missing)
    {
        return;
    }
    auto& object = found->second;
    for (std::size_t index = 0; index < object.interfaces.size(); ++index)
    {
        registerInterface(found->first, object.interfaces[index],
                          object.registrations[index], decision);
    }
    object.without.missing = decision.missing;
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
        services.busLost();
    }
    if (!isMethodCall(message) || (services.faults.empty() && !services.log))
    {
        return 0;
    }
    const char* self = nullptr;
    check(sd_bus_get_unique_name(bus.get(), &self), "sd_bus_get_unique_name");
    return viewOf(sd_bus_message_get_sender(message)) == self
               ? receiveAgain(message)
               : decide(message);
}

/** What sd-bus does not take is answered by its tables. */
int Service::receiveAgain(sd_bus_message* message)
{
    uint64_t cookie = 0;
    check(sd_bus_message_get_cookie(message, &cookie),
          "sd_bus_message_get_cookie");
    const auto call = std::ranges::find(held, cookie, &Held::cookie);
    if (call != held.end())
    {
        leaveOut(call->call.path, call->decision);
    }
    return 0;
}

int Service::decide(sd_bus_message* message)
{
    const auto keys = keysOf(message, name);
    auto decision = services.faults.decide(keys, find(keys.path));
    Call call;
    if (services.log)
    {
        call = callOf(message);
    }
    if (decision.fault || !decision.missing.empty())
    {
        call.fault = decision.fault ? decision.fault->place
                                    : decision.missing.front()->place;
    }
    if (services.log && !services.logsOutcome)
    {
        services.log(call);
    }
    if (const auto* fault = decision.fault;
        fault && fault->then != Effect::delay)
    {
        meet(*fault, message, call);
        return 1;
    }
    if (decision.fault || services.logsOutcome)
    {
        hold(message, std::move(call), std::move(decision));
        return 1;
    }
    leaveOut(keys.path, decision);
    return 0;
}

void Service::logOutcome(Call& call, const std::string& outcome)
{
    if (services.logsOutcome)
    {
        call.outcome = outcome;
        services.log(call);
    }
}

void Service::meet(const Fault& fault, sd_bus_message* message, Call& call)
{
    switch (fault.then)
    {
        case Effect::error:
            logOutcome(call, fault.errorName);
            return sendError(message, fault.errorName, fault.errorText);
        case Effect::vanished:
            logOutcome(call, SD_BUS_ERROR_UNKNOWN_OBJECT);
            return sendError(message, SD_BUS_ERROR_UNKNOWN_OBJECT,
                             "Unknown object '" +
                                 std::string(sd_bus_message_get_path(message)) +
                                 "'.");
        case Effect::reply:
        {
            const auto reply = newReply(message);
            if (fault.reply)
            {
                appendValues(reply.get(), fault.replyTypes, *fault.reply);
            }
            logOutcome(call, replied);
            return send(reply);
        }
        case Effect::death: logOutcome(call, "death"); return die();
        default: return logOutcome(call, "silence");
    }
}

void Service::hold(sd_bus_message* message, Call&& call, Decision&& decision)
{
    auto& one = held.emplace_back(*this, Message(sd_bus_message_ref(message)),
                                  std::move(call), std::move(decision));
    if (!one.decision.fault)
    {
        return sendAgain(one);
    }
    sd_event_source* timer = nullptr;
    check(sd_event_add_time_relative(services.event, &timer, CLOCK_MONOTONIC,
                                     uint64_t{1000} *
                                         one.decision.fault->milliseconds,
                                     1000, onTimer, &one),
          "sd_event_add_time_relative");
    one.timer.reset(timer);
}

int Service::onTimer(sd_event_source*, uint64_t, void* data) noexcept
{
    auto& call = *static_cast<Held*>(data);
    try
    {
        call.service.sendAgain(call);
    }
    catch (const std::exception&)
    {
        // As above: there is nobody left to tell.
        call.service.release(call);
    }
    return 0;
}

/** sd-bus answers only what it receives, so the service calls itself. */
void Service::sendAgain(Held& call)
{
    auto* original = call.message.get();
    sd_bus_message* raw = nullptr;
    check(sd_bus_message_new_method_call(bus.get(), &raw, name.c_str(),
                                         sd_bus_message_get_path(original),
                                         sd_bus_message_get_interface(original),
                                         sd_bus_message_get_member(original)),
          "sd_bus_message_new_method_call");
    const Message again(raw);
    check(sd_bus_message_rewind(original, true), "sd_bus_message_rewind");
    check(sd_bus_message_copy(raw, original, true), "sd_bus_message_copy");
    sd_bus_slot* slot = nullptr;
    check(sd_bus_call_async(bus.get(), &slot, raw, onReply, &call, UINT64_MAX),
          "sd_bus_call_async");
    call.reply.reset(slot);
    check(sd_bus_message_get_cookie(raw, &call.cookie),
          "sd_bus_message_get_cookie");
}

int Service::onReply(sd_bus_message* reply, void* data, sd_bus_error*) noexcept
{
    auto& call = *static_cast<Held*>(data);
    try
    {
        call.service.answer(call, reply);
    }
    catch (const std::exception&)
    {
        // As above: there is nobody left to tell.
    }
    call.service.release(call);
    return 1;
}

void Service::answer(Held& call, sd_bus_message* reply)
{
    if (const auto* error = sd_bus_message_get_error(reply))
    {
        logOutcome(call.call, error->name);
        check(sd_bus_reply_method_error(call.message.get(), error),
              "sd_bus_reply_method_error");
        return;
    }
    logOutcome(call.call, replied);
    const auto answer = newReply(call.message.get());
    check(sd_bus_message_copy(answer.get(), reply, true),
          "sd_bus_message_copy");
    send(answer);
}

void Service::release(const Held& call)
{
    held.remove_if([&](const Held& one) { return &one == &call; });
}

} // namespace morvath::sim
