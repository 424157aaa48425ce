// SPDX-License-Identifier: Apache-2.0
#include "cli/terminal_text.hpp"
#include "sim/json_value.hpp"
#include "sim/record/record.hpp"
#include "sim/scenario.hpp"
#include "sim/sd_bus.hpp"

#include <expat.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <map>
#include <memory>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

namespace morvath::sim
{
namespace
{

constexpr std::string_view noObject = SD_BUS_ERROR_UNKNOWN_OBJECT;

/** Whether the service has no more to say at all. */
bool isGone(const BusError& error)
{
    constexpr std::array<std::string_view, 3> names{
        SD_BUS_ERROR_TIMEOUT, SD_BUS_ERROR_SERVICE_UNKNOWN,
        SD_BUS_ERROR_NAME_HAS_NO_OWNER};
    return std::ranges::count(names, error.name()) > 0;
}

/** Adds a member whose key is new, past the search for it. */
void addNew(Json& object, const std::string& key, Json&& value)
{
    object.get_ref<Json::object_t&>().emplace_back(key, std::move(value));
}

/** What introspection data say of an interface. */
struct KnownInterface
{
    std::string name;
    /** Each with whether it is read-only. */
    std::vector<std::pair<std::string, bool>> properties{};
};

/** Reads introspection data. */
struct Introspection
{
    /** @throws BusError  they are not well-formed; what is before counts */
    void parse(const std::string& xml)
    {
        const std::unique_ptr<XML_ParserStruct, Releaser<XML_ParserFree>>
            parser(XML_ParserCreate(nullptr));
        XML_SetUserData(parser.get(), this);
        XML_SetElementHandler(
            parser.get(),
            [](void* self, const char* element, const char** attributes) {
                static_cast<Introspection*>(self)->start(element, attributes);
            },
            [](void* self, const char*) {
                --static_cast<Introspection*>(self)->depth;
            });
        if (XML_Parse(parser.get(), xml.data(), static_cast<int>(xml.size()),
                      XML_TRUE) != XML_STATUS_OK)
        {
            throw BusError(SD_BUS_ERROR_FAILED, "not well-formed");
        }
    }

    void start(const std::string_view element, const char** attributes)
    {
        std::map<std::string_view, std::string> values;
        for (; *attributes; attributes += 2)
        {
            values.emplace(attributes[0], attributes[1]);
        }
        ++depth;
        // A child may be described in its parent; that is another object.
        if (depth == 2 && element == "interface")
        {
            interfaces.push_back({values["name"]});
        }
        else if (depth == 3 && element == "property" && !interfaces.empty())
        {
            interfaces.back().properties.emplace_back(
                values["name"], values["access"] == "read");
        }
    }

    std::vector<KnownInterface> interfaces{};
    int depth = 0;
};

/** Turns a live platform into the objects of a scenario. */
class Recorder
{
  public:
    Recorder(const RecordOptions& options, const Omit& omit) :
        bus(openBus(options.address)),
        omit(omit)
    {
        const auto patience = static_cast<uint64_t>(options.patience.count());
        check(sd_bus_set_method_call_timeout(bus.get(), patience),
              "sd_bus_set_method_call_timeout");
    }

    /** @param[in] wanted  the services; empty: all */
    Json objects(const std::set<std::string>& wanted)
    {
        auto recorded = Json::array();
        auto missing = wanted;
        const auto listed = mappedObjects();
        for (const auto& [object, owners] : listed.items())
        {
            path = object;
            cli::showProgress(path);
            Json services;
            for (const auto& [owner, interfaces] : owners.items())
            {
                service = owner;
                missing.erase(service);
                // What the mapper publishes follows from the other objects.
                if (service != mapperService && !lost.contains(service) &&
                    (wanted.empty() || wanted.contains(service)))
                {
                    addService(services, interfaces);
                }
            }
            if (!services.empty())
            {
                recorded.push_back({{"path", path}, {"services", services}});
            }
        }
        for (const auto& name : missing)
        {
            omit(name, "the object mapper does not know the service");
        }
        return recorded;
    }

  private:
    /**
     * What the present service answers for the present object.
     * @throws BusError            it is missing or cannot be used
     * @throws std::runtime_error  the bus is gone
     */
    Json ask(const char* interface, const char* member, const char* answerType,
             const char* types, auto... arguments)
    {
        sd_bus_error error{};
        const std::unique_ptr<sd_bus_error, Releaser<sd_bus_error_free>> owner(
            &error);
        sd_bus_message* raw = nullptr;
        const auto result = sd_bus_call_method(
            bus.get(), service.c_str(), path.c_str(), interface, member, &error,
            &raw, types, arguments...);
        const Message answer(raw);
        if (result < 0 && sd_bus_is_open(bus.get()) <= 0)
        {
            throw std::runtime_error("the bus went away");
        }
        if (error.name)
        {
            const std::string text = error.message ? error.message : "";
            throw BusError(error.name,
                           error.name +
                               (text.empty() ? "" : " (" + text + ")"));
        }
        try
        {
            // A dictionary with a key that is there twice is an array, too.
            auto json = sd_bus_message_has_signature(raw, answerType) > 0
                            ? readJson(raw)
                            : Json::array();
            check(json.is_array() ? -EBADMSG : 0, "reading the answer");
            return json;
        }
        catch (const std::system_error& failure)
        {
            throw BusError(SD_BUS_ERROR_FAILED, failure.what());
        }
    }

    Json mappedObjects()
    {
        path = mapperPath;
        service = mapperService;
        try
        {
            return ask(mapperService, "GetSubTree", "a{sa{sas}}", "sias", "/",
                       0, 0);
        }
        catch (const std::exception& error)
        {
            throw std::runtime_error("the object mapper cannot be asked: " +
                                     std::string(error.what()));
        }
    }

    /** Adds what the service publishes on the object, if it knows it. */
    void addService(Json& services, std::vector<std::string> names)
    {
        std::erase_if(names, [](const std::string& name) {
            return name.starts_with("org.freedesktop.DBus.");
        });
        try
        {
            services.push_back(
                {{"name", service}, {"interfaces", interfaces(names)}});
        }
        catch (const BusError& error)
        {
            if (isGone(error))
            {
                lost.insert(service);
                omit(service + ", from object " + path + " on", error.what());
            }
            // Without interfaces it may only be there for what is below.
            else if (error.name() != noObject || !names.empty())
            {
                omit(path + ": " + service, error.what());
            }
        }
    }

    Json interfaces(const std::vector<std::string>& names)
    {
        auto recorded = Json::object();
        if (names.empty())
        {
            // Tells whether there is an object at all.
            ask(propertiesInterface.data(), "GetAll", "a{sv}", "s", "");
            return recorded;
        }
        Introspection known;
        attempt("introspection", [&] {
            const auto xml = ask("org.freedesktop.DBus.Introspectable",
                                 "Introspect", "s", "");
            known.parse(xml.get_ref<const std::string&>());
        });
        // Scenarios have them the other way round.
        std::ranges::reverse(known.interfaces);
        for (const auto& name : names)
        {
            known.interfaces.push_back({name});
        }
        std::set<std::string> left(names.begin(), names.end());
        for (const auto& interface : known.interfaces)
        {
            if (left.erase(interface.name) > 0)
            {
                addInterface(recorded, interface);
            }
        }
        return recorded;
    }

    void addInterface(Json& recorded, const KnownInterface& known)
    {
        const auto& name = known.name;
        auto values = Json::object();
        const auto isListed = attempt(name, [&] {
            values = ask(propertiesInterface.data(), "GetAll", "a{sv}", "s",
                         name.c_str());
        });
        if (!isListed && known.properties.empty())
        {
            return;
        }
        auto own = Json::object();
        // Of those that are still to be added.
        std::map<std::string, bool> access(known.properties.begin(),
                                           known.properties.end());
        const auto add = [&](const std::string& property, Json& value) {
            if (sd_bus_member_name_is_valid(property.c_str()) <= 0)
            {
                return omit(path + ": " + name, "a property without a name");
            }
            const auto isReadOnly = access.extract(property);
            if (isReadOnly && isReadOnly.mapped())
            {
                value["readOnly"] = true;
            }
            addNew(own, property, std::move(value));
        };
        for (auto& [property, value] : values.items())
        {
            add(property, value);
        }
        // One getter that fails takes GetAll with it; the others are not lost.
        for (const auto& one : known.properties)
        {
            const auto& property = one.first;
            if (access.contains(property))
            {
                attempt(name + "." + property, [&] {
                    auto value = ask(propertiesInterface.data(), "Get", "v",
                                     "ss", name.c_str(), property.c_str());
                    if (isListed)
                    {
                        value["hidden"] = true;
                    }
                    add(property, value);
                });
            }
        }
        addNew(recorded, name, std::move(own));
    }

    /** Tells what fails, unless that ends the whole object. */
    bool attempt(const std::string& what, const auto& action)
    {
        try
        {
            action();
            return true;
        }
        catch (const BusError& error)
        {
            if (isGone(error) || error.name() == noObject)
            {
                throw;
            }
            omit(path + ": " + service + ": " + what, error.what());
            return false;
        }
    }

    Bus bus;
    const Omit& omit;
    std::set<std::string> lost{};
    // What is asked.
    std::string service{};
    std::string path{};
};

} // namespace

Json recordObjects(const RecordOptions& options, const Omit& omit)
{
    return Recorder(options, omit).objects(options.services);
}

} // namespace morvath::sim
