// SPDX-License-Identifier: Apache-2.0
#include "sim/record/record.hpp"

#include "sim/json_value.hpp"
#include "sim/record/anonymize.hpp"
#include "sim/record/raid.hpp"
#include "sim/scenario.hpp"
#include "sim/sd_bus.hpp"

#include <dlfcn.h>
#include <expat.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
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
constexpr auto properties = "org.freedesktop.DBus.Properties";

/** Adds a member whose key is new, past the search for it. */
void add(Json& object, std::string key, Json&& value)
{
    Json::object_t::Container& members = object.get_ref<Json::object_t&>();
    members.emplace_back(std::move(key), std::move(value));
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

bool isOwn(std::string_view interface)
{
    return !interface.starts_with("org.freedesktop.DBus.");
}

/** An object of one service. */
struct Source
{
    const std::string& path;
    const std::string& service;
};

/**
 * What introspection data say of an object: whether a property is read-only,
 * by its interface and name, in their order.
 */
class Introspection
{
  public:
    /** @return whether they are well-formed; what stands before counts */
    bool parse(const std::string& xml)
    {
        const std::unique_ptr<XML_ParserStruct, Releaser<XML_ParserFree>>
            parser(XML_ParserCreate(nullptr));
        if (!parser)
        {
            throw std::bad_alloc();
        }
        XML_SetUserData(parser.get(), this);
        XML_SetElementHandler(parser.get(), start, end);
        return XML_Parse(parser.get(), xml.data(), static_cast<int>(xml.size()),
                         XML_TRUE) == XML_STATUS_OK;
    }

    Json interfaces = Json::object();

  private:
    static std::string attribute(const char** attributes, std::string_view name)
    {
        while (*attributes && name != *attributes)
        {
            attributes += 2;
        }
        return *attributes ? attributes[1] : "";
    }

    static void start(void* data, const char* element, const char** attributes)
    {
        auto& self = *static_cast<Introspection*>(data);
        const std::string_view name = element;
        self.depth += name == "node" ? 1 : 0;
        // A child may be described in its parent; that is another object.
        if (self.depth == 1 && name == "interface")
        {
            add(self.interfaces, attribute(attributes, "name"), Json::object());
        }
        else if (self.depth == 1 && name == "property" &&
                 !self.interfaces.empty())
        {
            add(self.interfaces.back(), attribute(attributes, "name"),
                attribute(attributes, "access") == "read");
        }
    }

    static void end(void* data, const char* element)
    {
        static_cast<Introspection*>(data)->depth -=
            std::string_view(element) == "node" ? 1 : 0;
    }

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
        const auto listed = mappedObjects();
        rememberParents(listed);
        auto recorded = Json::array();
        auto missing = wanted;
        for (const auto& [path, owners] : listed.items())
        {
            auto services = Json::array();
            for (const auto& [service, interfaces] : owners.items())
            {
                missing.erase(service);
                auto own = interfacesOf({path, service}, interfaces);
                if (own.is_object())
                {
                    services.push_back(
                        {{"name", service}, {"interfaces", std::move(own)}});
                }
            }
            if (!services.empty())
            {
                recorded.push_back(
                    {{"path", path}, {"services", std::move(services)}});
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
            check(sd_bus_message_has_signature(raw, answerType) > 0 ? 0
                                                                    : -EBADMSG,
                  "the type of the answer");
            auto json = readJson(raw);
            // So is a dictionary that is not one.
            check(json.is_array() ? -EBADMSG : 0, "a key that is there twice");
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

    void rememberParents(const Json& listed)
    {
        for (const auto& [path, owners] : listed.items())
        {
            for (const auto& [service, interfaces] : owners.items())
            {
                auto parent = path;
                do
                {
                    parent.resize(std::max<std::size_t>(parent.rfind('/'), 1));
                } while (parents.emplace(parent, service).second &&
                         parent != "/");
            }
        }
    }

    /** What a service publishes on an object; null without the object. */
    Json interfacesOf(const Source& source, std::vector<std::string> names)
    {
        const auto& [path, service] = source;
        std::erase_if(names, std::not_fn(isOwn));
        // What the mapper publishes follows from the other objects.
        if (service == mapperService || lost.contains(service) ||
            (!wanted.empty() && !wanted.contains(service)))
        {
            return {};
        }
        try
        {
            return readInterfaces(source, names);
        }
        catch (const BusError& error)
        {
            if (isLost(error))
            {
                lost.insert(service);
                omit(service + ", from object " + path + " on", error.what());
            }
            // Without interfaces of its own, what is below is its reason.
            else if (!isGone(error) || !names.empty() ||
                     !parents.contains({path, service}))
            {
                omit(path + ": " + service, error.what());
            }
        }
        return {};
    }

    Json readInterfaces(const Source& source, std::vector<std::string>& names)
    {
        auto interfaces = Json::object();
        if (names.empty())
        {
            // Tells whether there is an object at all.
            ask(source, properties, "GetAll", "a{sv}", "s", "");
            return interfaces;
        }
        auto known = introspect(source);
        // What was registered last is introspected first.
        for (auto one = known.rbegin(); one != known.rend(); ++one)
        {
            if (std::erase(names, one.key()) > 0)
            {
                addInterface(interfaces, source, one.key(), one.value());
            }
        }
        for (const auto& name : names)
        {
            addInterface(interfaces, source, name, nullptr);
        }
        return interfaces;
    }

    Json introspect(const Source& source)
    {
        Introspection introspection;
        try
        {
            const auto xml = ask(source, introspectable, "Introspect", "s", "");
            if (!introspection.parse(xml.get_ref<const std::string&>()))
            {
                throw BusError(SD_BUS_ERROR_FAILED, "not well-formed");
            }
        }
        catch (const BusError& error)
        {
            tell(source, "introspection", error);
        }
        return std::move(introspection.interfaces);
    }

    /** @param[in] known  whether a property is read-only; null: unknown */
    void addInterface(Json& interfaces, const Source& source,
                      const std::string& name, const Json& known)
    {
        auto listed = Json::object();
        auto isListed = true;
        try
        {
            listed =
                ask(source, properties, "GetAll", "a{sv}", "s", name.c_str());
        }
        catch (const BusError& error)
        {
            tell(source, name, error);
            isListed = false;
        }
        if (!isListed && known.is_null())
        {
            return;
        }
        std::unordered_map<std::string, bool> unseen;
        for (const auto& [property, isReadOnly] : known.items())
        {
            unseen.emplace(property, isReadOnly);
        }
        auto own = Json::object();
        for (auto& [property, value] : listed.items())
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
        for (const auto& [property, isReadOnly] : known.items())
        {
            if (!unseen.contains(property))
            {
                continue;
            }
            try
            {
                auto value = ask(source, properties, "Get", "v", "ss",
                                 name.c_str(), property.c_str());
                if (isListed)
                {
                    value["hidden"] = true;
                }
                addProperty(own, property, value, isReadOnly);
            }
            catch (const BusError& error)
            {
                tell(source, name + "." + property, error);
            }
        }
        add(interfaces, name, std::move(own));
    }

    static void addProperty(Json& own, const std::string& name, Json& value,
                            bool isReadOnly)
    {
        if (isReadOnly)
        {
            value["readOnly"] = true;
        }
        add(own, name, std::move(value));
    }

    /** To be called where the error is caught: it may end the whole object. */
    void tell(const Source& source, const std::string& what,
              const BusError& error)
    {
        if (isLost(error) || isGone(error))
        {
            throw;
        }
        omit(source.path + ": " + source.service + ": " + what, error.what());
    }

    Bus bus;
    const Omit& omit;
    std::set<std::string> wanted;
    std::set<std::string> lost;
    /** The paths above the objects of a service. */
    std::set<std::pair<std::string, std::string>> parents;
};

/** The RAID section; null when there is nothing to record. */
Json raidSection(const Omit& omit)
{
    vontel::simulation::Section section{.hasManager = false};
    // It stays, as an exception of the library's own would need it.
    auto* module = dlopen(raidModule, RTLD_NOW | RTLD_NODELETE);
    if (module)
    {
        const auto read = reinterpret_cast<decltype(&recordRaid)>(
            dlsym(module, "recordRaid"));
        read(section, omit);
        return section.hasManager ? vontel::simulation::write(section) : Json();
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

} // namespace

int record(const RecordOptions& options)
{
    auto status = EXIT_SUCCESS;
    const Omit omit = [&](const std::string& what, const std::string& why) {
        status = EXIT_FAILURE;
        std::fprintf(stderr, "morvath-sim: left out: %s: %s\n", what.c_str(),
                     why.c_str());
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
    const auto text = scenario.dump(2) + '\n';
    try
    {
        // What is printed is meant to be replayed.
        Scenario::parse(text, "the recording");
    }
    catch (const ScenarioError& error)
    {
        omit("a correct scenario", error.what());
    }
    if (std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0)
    {
        throw std::runtime_error("the recording could not be written");
    }
    return status;
}

} // namespace morvath::sim
