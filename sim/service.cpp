// SPDX-License-Identifier: Apache-2.0
#include "sim/service.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <exception>
#include <system_error>
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
    check(sd_bus_message_get_type(message, &type));
    return type == SD_BUS_MESSAGE_METHOD_CALL;
}

/** A header field, which may be missing. */
std::string_view viewOf(const char* text)
{
    return text ? text : std::string_view();
}

Call callOf(sd_bus_message* message)
{
    Json arguments;
    try
    {
        arguments = readJsonList(message);
    }
    catch (const std::system_error&)
    {
        // A file descriptor is among them.
    }
    check(sd_bus_message_rewind(message, true));
    const auto field = [&](auto* get) {
        return std::string(viewOf(get(message)));
    };
    return {.time = std::chrono::system_clock::now(),
            .caller = field(sd_bus_message_get_sender),
            .service = field(sd_bus_message_get_destination),
            .path = field(sd_bus_message_get_path),
            .interface = field(sd_bus_message_get_interface),
            .member = field(sd_bus_message_get_member),
            .arguments = std::make_shared<const Json>(std::move(arguments))};
}

/** The views are of the call. */
CallKeys keysOf(const Call& call, std::string_view service)
{
    const auto text = [&](std::size_t position) {
        const auto& all = *call.arguments;
        const auto isProperties = call.interface == propertiesInterface;
        return isProperties && position < all.size() &&
                       all[position].is_string()
                   ? std::string_view(
                         all[position].get_ref<const std::string&>())
                   : std::string_view();
    };
    return {.service = service,
            .path = call.path,
            .interface = call.interface,
            .member = call.member,
            .propertyInterface = text(0),
            .property = text(1)};
}

void send(const Message& message)
{
    check(sd_bus_send(nullptr, message.get(), nullptr));
}

int getProperty(sd_bus*, const char*, const char*, const char*,
                sd_bus_message* reply, void* property,
                sd_bus_error* error) noexcept
{
    return answering(error, [&] {
        const auto& own = *static_cast<const Property*>(property);
        append(reply, own.type, *own.value);
        return 0;
    });
}

int setProperty(sd_bus*, const char* path, const char* interface, const char*,
                sd_bus_message* value, void* property,
                sd_bus_error* error) noexcept
{
    return answering(error, [&] {
        auto& own = *static_cast<Property*>(property);
        own.publisher->set(path, interface, own, readJson(value));
        return 0;
    });
}

sd_bus_vtable entryOf(const Property& property, const char* name,
                      const char* type, std::size_t offset)
{
    const uint64_t flags = property.hidden
                               ? SD_BUS_VTABLE_HIDDEN
                               : SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE;
    // What it can, sd-bus reads by itself at the beginning of the property.
    uint64_t unused = 0;
    const auto get = storeBasic(property.type, *property.value, &unused)
                         ? nullptr
                         : getProperty;
    if (property.readOnly)
    {
        return SD_BUS_PROPERTY(name, type, get, offset, flags);
    }
    return SD_BUS_WRITABLE_PROPERTY(name, type, get, setProperty, offset,
                                    flags | SD_BUS_VTABLE_UNPRIVILEGED);
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
        if (service->objects().contains(path))
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
    check(sd_bus_add_filter(bus.get(), nullptr, onMessage, this));
    for (auto& [path, object] : published)
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
                              SD_EVENT_PRIORITY_NORMAL));
}

void Service::die()
{
    held.clear();
    for (auto& [path, object] : published)
    {
        object.slots.clear();
    }
    // Without the service the mapper must not list its objects, not even to
    // a caller who asks as soon as the bus has noticed.
    const auto dying = std::move(bus);
    services.objectsChanged();
}

void Service::add(const std::string& path, std::vector<Interface> interfaces)
{
    remove(path);
    auto& object = published[path];
    object.interfaces = std::move(interfaces);
    for (auto& interface : object.interfaces)
    {
        for (auto& property : interface.properties)
        {
            property.publisher = this;
            storeBasic(property.type, *property.value, &property.raw);
        }
    }
    if (bus)
    {
        registerAll(path, object);
    }
}

void Service::announce(const std::string& path,
                       int (*emit)(sd_bus* bus, const char* path)) const
{
    const auto object = published.find(path);
    if (bus && object != published.end() && !object->second.interfaces.empty())
    {
        check(emit(bus.get(), path.c_str()), "InterfacesAdded or -Removed");
    }
}

Property* Service::find(const Place& place)
{
    const auto object = published.find(place.path);
    return object == published.end()
               ? nullptr
               : findProperty(object->second.interfaces, place.interface,
                              place.property);
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
    storeBasic(property.type, *property.value, &property.raw);
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

Slot Service::addTable(const std::string& path, const std::string& interface,
                       const sd_bus_vtable* table, void* userdata)
{
    sd_bus_slot* slot = nullptr;
    const auto operation = "publishing " + interface + " at " + path;
    check(sd_bus_add_object_vtable(bus.get(), &slot, path.c_str(),
                                   interface.c_str(), table, userdata),
          operation.c_str());
    return Slot(slot);
}

void Service::registerAll(const std::string& path, Published& object)
{
    static constexpr sd_bus_vtable hidden[]{
        SD_BUS_VTABLE_START(SD_BUS_VTABLE_HIDDEN), SD_BUS_VTABLE_END};
    // Keeps the object, and its place among its neighbours, while its tables
    // are exchanged; sd-bus knows no object without one.
    auto presence = addTable(path, presenceInterface, hidden, nullptr);
    object.slots.clear();
    for (auto& interface : object.interfaces)
    {
        object.slots.push_back(addTable(path, interface.name,
                                        tableOf(interface, object.without),
                                        interface.properties.data()));
    }
    if (object.interfaces.empty())
    {
        object.slots.push_back(std::move(presence));
    }
}

const sd_bus_vtable* Service::tableOf(const Interface& interface,
                                      const Decision& without)
{
    // The texts of the table are those of its form, each with its zero.
    std::string form;
    for (const auto& property : interface.properties)
    {
        const auto isThere = !without.isMissing(interface.name, property.name);
        (form += property.name) += '\0';
        (form += property.type) += '\0';
        form += static_cast<char>('0' + isThere + 2 * property.readOnly +
                                  4 * property.hidden);
    }
    const auto [place, isNew] = services.tables.try_emplace(std::move(form));
    auto& table = place->second;
    if (isNew)
    {
        table.push_back(SD_BUS_VTABLE_START(0));
        const auto* name = place->first.c_str();
        std::size_t offset = 0;
        for (const auto& property : interface.properties)
        {
            const auto* type = name + property.name.size() + 1;
            if (!without.isMissing(interface.name, property.name))
            {
                table.push_back(entryOf(property, name, type, offset));
            }
            name = type + property.type.size() + 2;
            offset += sizeof(Property);
        }
        table.push_back(SD_BUS_VTABLE_END);
    }
    return table.data();
}

void Service::leaveOut(std::string_view path, const Decision& decision)
{
    const auto object = published.find(path);
    if (object != published.end() &&
        object->second.without.missing != decision.missing)
    {
        object->second.without.missing = decision.missing;
        registerAll(object->first, object->second);
    }
}

int Service::onMessage(sd_bus_message* message, void* self,
                       sd_bus_error* error) noexcept
{
    return answering(
        error, [&] { return static_cast<Service*>(self)->receive(message); });
}

int Service::receive(sd_bus_message* message)
{
    if (services.busLost &&
        sd_bus_message_is_signal(message, "org.freedesktop.DBus.Local",
                                 "Disconnected") > 0)
    {
        services.busLost();
    }
    if ((services.faults.empty() && !services.log) || !isMethodCall(message))
    {
        return 0;
    }
    const char* self = nullptr;
    check(sd_bus_get_unique_name(bus.get(), &self));
    if (viewOf(sd_bus_message_get_sender(message)) != self)
    {
        return decide(message);
    }
    // A held call has come back.
    uint64_t cookie = 0;
    check(sd_bus_message_get_cookie(message, &cookie));
    const auto call = std::ranges::find(held, cookie, &Held::cookie);
    if (call != held.end())
    {
        leaveOut(call->call.path, call->decision);
    }
    return 0;
}

/** What the filter does not take is answered by the tables of sd-bus. */
int Service::decide(sd_bus_message* message)
{
    auto call = callOf(message);
    const auto object = published.find(call.path);
    auto decision = services.faults.decide(
        keysOf(call, name),
        object == published.end() ? nullptr : &object->second.interfaces);
    const auto* fault = decision.fault;
    if (fault || !decision.missing.empty())
    {
        call.fault = (fault ? fault : decision.missing.front())->place;
    }
    if (services.log && !services.logsOutcome)
    {
        services.log(call);
    }
    if (fault && fault->then != Effect::delay)
    {
        meet(*fault, message, call);
        return 1;
    }
    if (!fault && !services.logsOutcome)
    {
        leaveOut(call.path, decision);
        return 0;
    }
    auto& one =
        held.emplace_back(Held{*this, Message(sd_bus_message_ref(message)),
                               std::move(call), std::move(decision)});
    if (!fault)
    {
        sendAgain(one);
        return 1;
    }
    sd_event_source* timer = nullptr;
    check(sd_event_add_time_relative(services.event, &timer, CLOCK_MONOTONIC,
                                     uint64_t{1000} * fault->milliseconds, 1000,
                                     onTimer, &one));
    one.timer.reset(timer);
    return 1;
}

void Service::logOutcome(Call& call, const std::string& outcome)
{
    if (services.logsOutcome)
    {
        call.outcome = outcome;
        services.log(call);
    }
}

void Service::refuse(sd_bus_message* message, Call& call,
                     const std::string& error, const std::string& text)
{
    logOutcome(call, error);
    const sd_bus_error reply{error.c_str(), text.c_str(), 0};
    check(sd_bus_reply_method_error(message, &reply));
}

void Service::meet(const Fault& fault, sd_bus_message* message, Call& call)
{
    switch (fault.then)
    {
        case Effect::error:
            return refuse(message, call, fault.errorName, fault.errorText);
        case Effect::vanished:
            return refuse(message, call, SD_BUS_ERROR_UNKNOWN_OBJECT,
                          "Unknown object '" + fault.when.path + "'.");
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

int Service::onTimer(sd_event_source*, uint64_t, void* data) noexcept
{
    return answering(nullptr, [&] {
        auto& call = *static_cast<Held*>(data);
        call.service.sendAgain(call);
        return 0;
    });
}

/** sd-bus answers only what it receives, so the service calls itself. */
void Service::sendAgain(Held& call)
{
    auto* original = call.message.get();
    sd_bus_message* raw = nullptr;
    check(sd_bus_message_new_method_call(bus.get(), &raw, name.c_str(),
                                         sd_bus_message_get_path(original),
                                         sd_bus_message_get_interface(original),
                                         sd_bus_message_get_member(original)));
    const Message again(raw);
    check(sd_bus_message_rewind(original, true));
    check(sd_bus_message_copy(raw, original, true));
    sd_bus_slot* slot = nullptr;
    check(sd_bus_call_async(bus.get(), &slot, raw, onReply, &call, UINT64_MAX));
    call.reply.reset(slot);
    check(sd_bus_message_get_cookie(raw, &call.cookie));
}

int Service::onReply(sd_bus_message* reply, void* data,
                     sd_bus_error* error) noexcept
{
    auto& call = *static_cast<Held*>(data);
    auto& calls = call.service.held;
    const auto result = answering(error, [&] {
        call.service.answer(call, reply);
        return 1;
    });
    calls.remove_if([&](const Held& one) { return &one == &call; });
    return result;
}

void Service::answer(Held& call, sd_bus_message* reply)
{
    if (const auto* error = sd_bus_message_get_error(reply))
    {
        return refuse(call.message.get(), call.call, error->name,
                      std::string(viewOf(error->message)));
    }
    logOutcome(call.call, replied);
    const auto answer = newReply(call.message.get());
    check(sd_bus_message_copy(answer.get(), reply, true));
    send(answer);
}

} // namespace morvath::sim
