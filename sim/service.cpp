// SPDX-License-Identifier: Apache-2.0
#include "sim/service.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace morvath::sim
{
namespace
{

// Its table is hidden: sd-bus knows no object without an interface.
constexpr auto presenceInterface = "morvath.Presence";

/** Whose table sd-bus is reading. */
Service& serviceOf(sd_bus* bus)
{
    const auto* raw = sd_bus_slot_get_userdata(sd_bus_get_current_slot(bus));
    return *static_cast<const Service::Raw*>(raw)->service;
}

int getProperty(sd_bus* bus, const char* path, const char* interface,
                const char* property, sd_bus_message* reply, void*,
                sd_bus_error* error) noexcept
{
    return answering(error, [&] {
        const auto& own = *serviceOf(bus).find({path, interface, property});
        append(reply, own.type, *own.value);
        return 0;
    });
}

int setProperty(sd_bus* bus, const char* path, const char* interface,
                const char* property, sd_bus_message* value, void*,
                sd_bus_error* error) noexcept
{
    return answering(error, [&] {
        auto& service = serviceOf(bus);
        service.set(path, interface, *service.find({path, interface, property}),
                    readJson(value));
        return 0;
    });
}

sd_bus_vtable entryOf(const Property& property, const char* name,
                      const char* type, std::size_t offset)
{
    const uint64_t flags = property.hidden
                               ? SD_BUS_VTABLE_HIDDEN
                               : SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE;
    // What it can, sd-bus reads by itself.
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
    const auto receive = [](sd_bus_message* message, void* self,
                            sd_bus_error* error) {
        return answering(error, [&] {
            return static_cast<Service*>(self)->receive(message);
        });
    };
    check(sd_bus_add_filter(bus.get(), nullptr, receive, this));
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
    check(sd_bus_attach_event(bus.get(), services.events, 0));
    const auto operation = "taking the bus name " + name;
    check(sd_bus_request_name(bus.get(), name.c_str(), 0), operation.c_str());
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
    for (const auto& interface : object.interfaces)
    {
        object.raw.push_back({.service = this});
        object.raw.resize(object.raw.size() + interface.properties.size());
    }
    auto* raw = object.raw.data();
    std::vector<std::pair<Raw*, std::size_t>> texts;
    for (auto& interface : object.interfaces)
    {
        for (auto& property : interface.properties)
        {
            property.raw = ++raw;
            storeBasic(property.type, *property.value, raw);
            if (property.value->is_string() && property.type != "d")
            {
                texts.emplace_back(raw, object.texts.size());
                (object.texts += asText(*property.value)) += '\0';
            }
        }
        ++raw;
    }
    for (const auto& [place, start] : texts)
    {
        place->text = &object.texts[start];
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
    storeBasic(property.type, *property.value, property.raw);
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

bool listsLastFirst(sd_bus* bus)
{
    const auto publish = [bus](const char* interface) {
        static constexpr sd_bus_vtable empty[]{SD_BUS_VTABLE_START(0),
                                               SD_BUS_VTABLE_END};
        sd_bus_slot* slot = nullptr;
        check(sd_bus_add_object_vtable(bus, &slot, "/", interface, empty,
                                       nullptr));
        return Slot(slot);
    };
    const auto first = publish("morvath.First");
    const auto last = publish("morvath.Last");
    const auto keep = [](sd_bus_message* reply, void* xml, sd_bus_error*) {
        const char* text = "none";
        sd_bus_message_read(reply, "s", &text);
        *static_cast<std::string*>(xml) = text;
        return 0;
    };
    const char* self = nullptr;
    check(sd_bus_get_unique_name(bus, &self));
    std::string xml;
    check(sd_bus_call_method_async(bus, nullptr, self, "/",
                                   "org.freedesktop.DBus.Introspectable",
                                   "Introspect", keep, &xml, ""));
    while (xml.empty())
    {
        if (check(sd_bus_process(bus, nullptr)) == 0)
        {
            check(sd_bus_wait(bus, UINT64_MAX));
        }
    }
    return xml.find("morvath.Last") < xml.find("morvath.First");
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
    std::vector<std::pair<const Interface*, Raw*>> tables;
    auto* raw = object.raw.data();
    for (const auto& interface : object.interfaces)
    {
        tables.emplace_back(&interface, raw);
        raw += 1 + interface.properties.size();
    }
    // So that a scenario has the same answers with each release of sd-bus.
    static const auto isLastFirst = listsLastFirst(bus.get());
    if (!isLastFirst)
    {
        std::ranges::reverse(tables);
    }
    for (const auto& [interface, values] : tables)
    {
        const auto* table = tableOf(*interface, object.without);
        object.slots.push_back(addTable(path, interface->name, table, values));
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
            offset += sizeof(Raw);
            const auto* type = name + property.name.size() + 1;
            if (!without.isMissing(interface.name, property.name))
            {
                table.push_back(entryOf(property, name, type, offset));
            }
            name = type + property.type.size() + 2;
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

} // namespace morvath::sim
