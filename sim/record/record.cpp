// SPDX-License-Identifier: Apache-2.0
#include "sim/record/record.hpp"

#include "cli/terminal_text.hpp"
#include "sim/json_value.hpp"
#include "sim/record/parts.hpp"
#include "sim/scenario.hpp"
#include "sim/sd_bus.hpp"

#include <dlfcn.h>
#include <expat.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <set>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <utility>

namespace morvath::sim
{

namespace
{

constexpr auto introspectable = "org.freedesktop.DBus.Introspectable";

/** Adds a member whose key is new, past the search for it. */
void addNew(Json& object, const std::string& key, Json&& value)
{
    Json::object_t::Container& members = object.get_ref<Json::object_t&>();
    members.emplace_back(key, std::move(value));
}

/** Whether nobody is left to ask: asking again only takes time. */
bool isLost(const BusError& error)
{
    return error.name() == SD_BUS_ERROR_TIMEOUT ||
           error.name() == SD_BUS_ERROR_SERVICE_UNKNOWN ||
           error.name() == SD_BUS_ERROR_NAME_HAS_NO_OWNER;
}

/** Whether the service does not know the object. */
bool isGone(const BusError& error)
{
    return error.name() == SD_BUS_ERROR_UNKNOWN_OBJECT;
}

/** An object of one service. */
struct Source
{
    const std::string& path;
    const std::string& service;
};

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
    /** @return whether they are well-formed; what stands before counts */
    bool parse(const std::string& xml)
    {
        const std::unique_ptr<XML_ParserStruct, Releaser<XML_ParserFree>>
            parser(XML_ParserCreate(nullptr));
        XML_SetUserData(parser.get(), this);
        XML_SetElementHandler(
            parser.get(),
            [](void* self, const char* element, const char** attributes) {
                static_cast<Introspection*>(self)->start(element, attributes);
            },
            [](void* self, const char* element) {
                static_cast<Introspection*>(self)->depth -=
                    element == nodeElement ? 1 : 0;
            });
        return XML_Parse(parser.get(), xml.data(), static_cast<int>(xml.size()),
                         XML_TRUE) == XML_STATUS_OK;
    }

    void start(const std::string_view element, const char** attributes)
    {
        std::map<std::string_view, std::string_view> values;
        for (; *attributes; attributes += 2)
        {
            values.emplace(attributes[0], attributes[1]);
        }
        const std::string name(values["name"]);
        depth += element == nodeElement ? 1 : 0;
        // A child may be described in its parent; that is another object.
        if (depth == 1 && element == "interface")
        {
            interfaces.push_back({name});
        }
        else if (depth == 1 && element == "property" && !interfaces.empty())
        {
            interfaces.back().properties.emplace_back(name, values["access"] ==
                                                                "read");
        }
    }

    static constexpr std::string_view nodeElement = "node";

    std::vector<KnownInterface> interfaces;
    int depth = 0;
};

/** Turns a live platform into the objects of a scenario. */
class Recorder
{
  public:
    Recorder(const RecordOptions& options, const Omit& omit) :
        bus(openBus(options.address)),
        omit(omit),
        wanted(options.services.begin(), options.services.end())
    {
        const std::chrono::duration<double, std::micro> patience =
            options.patience;
        check(sd_bus_set_method_call_timeout(
                  bus.get(), static_cast<uint64_t>(patience.count())),
              "sd_bus_set_method_call_timeout");
    }

    Json objects()
    {
        auto recorded = Json::array();
        auto missing = wanted;
        const auto listed = mappedObjects();
        for (const auto& [path, owners] : listed.items())
        {
            cli::showProgress(path);
            Json services;
            for (const auto& [service, interfaces] : owners.items())
            {
                missing.erase(service);
                // What the mapper publishes follows from the other objects.
                if (service != mapperService && !lost.contains(service) &&
                    (wanted.empty() || wanted.contains(service)))
                {
                    addService(services, {path, service}, interfaces);
                }
            }
            if (!services.empty())
            {
                recorded.push_back({{"path", path}, {"services", services}});
            }
        }
        for (const auto& service : missing)
        {
            omit(service, "the object mapper does not know the service");
        }
        return recorded;
    }

  private:
    /**
     * The answer to a call.
     * @throws BusError            it is missing or cannot be used
     * @throws std::runtime_error  the bus is gone
     */
    Json ask(const Source& source, const char* interface, const char* member,
             const char* answerType, const char* types, auto... arguments)
    {
        sd_bus_error error{};
        const std::unique_ptr<sd_bus_error, Releaser<sd_bus_error_free>> owner(
            &error);
        sd_bus_message* raw = nullptr;
        const auto result = sd_bus_call_method(
            bus.get(), source.service.c_str(), source.path.c_str(), interface,
            member, &error, &raw, types, arguments...);
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
            check(result, "calling it");
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
        try
        {
            return ask({mapperPath, mapperService}, mapperService, "GetSubTree",
                       "a{sa{sas}}", "sias", "/", 0, 0);
        }
        catch (const std::exception& error)
        {
            throw std::runtime_error("the object mapper cannot be asked: " +
                                     std::string(error.what()));
        }
    }

    /** Adds what a service publishes on an object, if it knows the object. */
    void addService(Json& services, const Source& source,
                    std::vector<std::string> names)
    {
        const auto& [path, service] = source;
        std::erase_if(names, [](const std::string& name) {
            return name.starts_with("org.freedesktop.DBus.");
        });
        try
        {
            services.push_back(
                {{"name", service}, {"interfaces", interfaces(source, names)}});
        }
        catch (const BusError& error)
        {
            if (isLost(error))
            {
                lost.insert(service);
                omit(service + ", from object " + path + " on", error.what());
            }
            // Without interfaces it may only be there for what is below.
            else if (!isGone(error) || !names.empty())
            {
                omit(path + ": " + service, error.what());
            }
        }
    }

    Json interfaces(const Source& source, std::vector<std::string> names)
    {
        auto recorded = Json::object();
        if (names.empty())
        {
            // Tells whether there is an object at all.
            ask(source, propertiesInterface.data(), "GetAll", "a{sv}", "s", "");
            return recorded;
        }
        Introspection known;
        attempt(source, "introspection", [&] {
            const auto xml = ask(source, introspectable, "Introspect", "s", "");
            if (!known.parse(xml.get_ref<const std::string&>()))
            {
                throw BusError(SD_BUS_ERROR_FAILED, "not well-formed");
            }
        });
        // What was registered last is introspected first.
        std::ranges::reverse(known.interfaces);
        for (const auto& one : known.interfaces)
        {
            if (std::erase(names, one.name) > 0)
            {
                addInterface(recorded, source, one);
            }
        }
        for (const auto& name : names)
        {
            addInterface(recorded, source, {name});
        }
        return recorded;
    }

    void addInterface(Json& recorded, const Source& source,
                      const KnownInterface& known)
    {
        const auto& name = known.name;
        auto values = Json::object();
        const auto isListed = attempt(source, name, [&] {
            values = ask(source, propertiesInterface.data(), "GetAll", "a{sv}",
                         "s", name.c_str());
        });
        if (!isListed && known.properties.empty())
        {
            return;
        }
        std::unordered_map<std::string, bool> unseen(known.properties.begin(),
                                                     known.properties.end());
        auto own = Json::object();
        for (auto& [property, value] : values.items())
        {
            const auto access = unseen.extract(property);
            if (sd_bus_member_name_is_valid(property.c_str()) > 0)
            {
                addProperty(own, property, value, access && access.mapped());
            }
            else
            {
                omit(source.path + ": " + name, "a property without a name");
            }
        }
        // One getter that fails takes GetAll with it; the others are not lost.
        for (const auto& property : known.properties)
        {
            if (unseen.contains(property.first))
            {
                attempt(source, name + "." + property.first, [&] {
                    auto value =
                        ask(source, propertiesInterface.data(), "Get", "v",
                            "ss", name.c_str(), property.first.c_str());
                    if (isListed)
                    {
                        value["hidden"] = true;
                    }
                    addProperty(own, property.first, value, property.second);
                });
            }
        }
        addNew(recorded, name, std::move(own));
    }

    static void addProperty(Json& own, const std::string& name, Json& value,
                            bool isReadOnly)
    {
        if (isReadOnly)
        {
            value["readOnly"] = true;
        }
        addNew(own, name, std::move(value));
    }

    /** Tells what fails, unless that ends the whole object. */
    bool attempt(const Source& source, const std::string& what,
                 const auto& action)
    {
        try
        {
            action();
            return true;
        }
        catch (const BusError& error)
        {
            if (isLost(error) || isGone(error))
            {
                throw;
            }
            omit(source.path + ": " + source.service + ": " + what,
                 error.what());
            return false;
        }
    }

    Bus bus;
    const Omit& omit;
    std::set<std::string> wanted;
    std::set<std::string> lost;
};

/** The RAID section; null when there is nothing to record. */
Json raidSection(const Omit& omit)
{
    Json section;
    // It stays, as an exception of the library's own would need it.
    auto* module = dlopen(raidModule, RTLD_NOW | RTLD_NODELETE);
    if (module)
    {
        const auto read = reinterpret_cast<decltype(&recordRaid)>(
            dlsym(module, "recordRaid"));
        read(section, omit);
        return section;
    }
    const std::string error = dlerror();
    const auto isWithoutLibrary =
        error.starts_with("libvontel.so.0: cannot open") &&
        error.ends_with("No such file or directory");
    if (!isWithoutLibrary)
    {
        omit("RAID", error);
    }
    return {};
}

/** Prints a scenario; success when nothing had to be left out. */
int record(const RecordOptions& options)
{
    auto status = EXIT_SUCCESS;
    const Omit omit = [&](const std::string& what, const std::string& why) {
        status = EXIT_FAILURE;
        cli::complain("morvath-sim", "left out: " + what + ": " + why);
    };
    Json scenario{{"format", 1},
                  {"description", "Recorded from a running platform"}};
    scenario["objects"] = Recorder(options, omit).objects();
    // The manager of drives is not a service that could be chosen.
    if (options.services.empty())
    {
        if (auto raid = raidSection(omit); !raid.is_null())
        {
            scenario["raid"] = std::move(raid);
        }
    }
    if (options.anonymize)
    {
        anonymize(scenario);
    }
    const auto text = cli::visibleJson(scenario.dump(2)) + '\n';
    try
    {
        // What is printed is meant to be replayed.
        Scenario::parse(text, "the recording");
    }
    catch (const ScenarioError& error)
    {
        omit("a correct scenario", error.what());
    }
    cli::endProgress();
    if (std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0)
    {
        throw std::runtime_error("the recording could not be written");
    }
    return status;
}

} // namespace

cli::Command recordCommand(RecordOptions& options)
{
    const auto takeService = [&options](const std::string& name) {
        if (sd_bus_service_name_is_valid(name.c_str()) <= 0)
        {
            throw cli::Misuse("--service: \"" + name + "\" is not a bus name");
        }
        options.services.push_back(name);
    };
    return {
        .name = "record",
        .meaning = "Print what is on a bus as a scenario",
        .parameters =
            {{.names = "--service",
              .meaning = "Record only this service; may be repeated",
              .take = takeService,
              .value = "NAME",
              .isRepeated = true},
             cli::flag("--anonymize", options.anonymize,
                       "Mask serial numbers, addresses and names of hosts"),
             cli::seconds("--timeout", options.patience,
                          "Longest wait for each answer, in seconds (5)"),
             cli::text("--address", "ADDRESS", options.address,
                       "The bus (default: the one of the environment)")},
        .run = [&options] { return record(options); },
    };
}

} // namespace morvath::sim
