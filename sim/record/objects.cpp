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
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
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

/** Adds a member whose key is new, past the search for it. */
void addNew(Json& object, const std::string& key, Json&& value)
{
    Json::object_t::Container& members = object.get_ref<Json::object_t&>();
    members.emplace_back(key, std::move(value));
}

constexpr std::string_view noObject = SD_BUS_ERROR_UNKNOWN_OBJECT;

/** Whether the service has no more to say, or not of the object. */
bool isFinal(const BusError& error)
{
    constexpr std::array<std::string_view, 4> names{
        SD_BUS_ERROR_TIMEOUT, SD_BUS_ERROR_SERVICE_UNKNOWN,
        SD_BUS_ERROR_NAME_HAS_NO_OWNER, noObject};
    return std::ranges::count(names, error.name()) > 0;
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
            const auto isUnknown = error.name() == noObject;
            if (isFinal(error) && !isUnknown)
            {
                lost.insert(service);
                omit(service + ", from object " + path + " on", error.what());
            }
            // Without interfaces it may only be there for what is below.
            else if (!isUnknown || !names.empty())
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
        // What was registered last is introspected first.
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
        // Of those that are still to be added.
        std::map<std::string, bool> access(known.properties.begin(),
                                           known.properties.end());
        auto own = Json::object();
        const auto add = [&](const std::string& property, Json& value) {
            const auto isReadOnly = access.extract(property);
            if (isReadOnly && isReadOnly.mapped())
            {
                value["readOnly"] = true;
            }
            addNew(own, property, std::move(value));
        };
        for (auto& [property, value] : values.items())
        {
            if (sd_bus_member_name_is_valid(property.c_str()) > 0)
            {
                add(property, value);
            }
            else
            {
                omit(path + ": " + name, "a property without a name");
            }
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
            if (isFinal(error))
            {
                throw;
            }
            omit(path + ": " + service + ": " + what, error.what());
            return false;
        }
    }

    Bus bus;
    const Omit& omit;
    std::set<std::string> wanted;
    std::set<std::string> lost{};
    // What is asked.
    std::string service{};
    std::string path{};
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
