// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/changes.hpp"
#include "sim/faults.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace morvath::sim
{

constexpr auto mapperService = "xyz.openbmc_project.ObjectMapper";
constexpr auto mapperPath = "/xyz/openbmc_project/object_mapper";

constexpr std::string_view propertiesInterface =
    "org.freedesktop.DBus.Properties";

/** What every object has without saying so; in byte order. */
constexpr std::array<std::string_view, 3> standardInterfaces{
    "org.freedesktop.DBus.Introspectable", "org.freedesktop.DBus.Peer",
    propertiesInterface};

constexpr bool isStandard(std::string_view interface)
{
    return std::ranges::find(standardInterfaces, interface) !=
           standardInterfaces.end();
}

struct Property
{
    std::string name{};
    std::string type{};
    SharedJson value{};
    bool readOnly = false;
    /** Left out of GetAll, readable with Get. */
    bool hidden = false;
    /** The only texts that may be set; empty when any value may be. */
    std::vector<std::string> enumeration{};
    /** Once it is published: where sd-bus reads a value of a basic type. */
    void* raw = nullptr;
};

struct Interface
{
    std::string name;
    std::vector<Property> properties;
};

/** What one service publishes on an object, in registration order. */
struct Owner
{
    std::string service;
    std::vector<Interface> interfaces;
};

struct Object
{
    std::string path;
    std::vector<Owner> owners;
};

/** A scenario that cannot be used; what() is "FILE: /pointer: message". */
class ScenarioError : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/** A machine as data. docs/scenario.md describes the format. */
struct Scenario
{
    /**
     * @param[in] sourceName  names the text in error messages; a scenario
     *                        that it extends is looked for beside it
     * @throws ScenarioError
     */
    static Scenario parse(std::string_view json, std::string_view sourceName);

    /**
     * Reads a file, or a scenario that comes with the program: "default" or
     * "busy".
     * @throws ScenarioError  also when it cannot be read
     */
    static Scenario load(const std::filesystem::path& file);

    /** The server that comes with the program. */
    static Scenario standard() { return load("default"); }

    /** The names of all services, the object mapper not among them. */
    std::set<std::string> services() const;

    std::string description{};
    std::vector<Object> objects{};
    std::vector<Fault> faults{};
    std::vector<Change> changes{};
    std::set<std::string> behaviours{};
    /** What the simulated RAID management library serves. */
    SharedJson raid{};
    bool hasMapper = true;
};

constexpr auto associationDefinitions =
    "xyz.openbmc_project.Association.Definitions";
constexpr auto associationInterface = "xyz.openbmc_project.Association";

/** A property among interfaces; null when there is none. */
auto* findProperty(auto& interfaces, std::string_view interface,
                   std::string_view property)
{
    const auto owner =
        std::ranges::find(interfaces, interface, &Interface::name);
    auto* all = owner == interfaces.end() ? nullptr : &owner->properties;
    const auto found = all ? std::ranges::find(*all, property, &Property::name)
                           : decltype(all->end()){};
    return all && found != all->end() ? &*found : nullptr;
}

struct Association
{
    std::string forward;
    std::string backward;
    std::string endpoint;
};

/** The associations that an object defines. */
std::vector<Association>
associationsOf(const std::vector<Interface>& interfaces);

/** The text of a scenario that is built in; empty when there is none. */
std::string_view builtInScenario(std::string_view name);

/** Whether scenarios may choose it. */
bool isBehaviour(std::string_view name);

/** Reads an object of a scenario; its values are parts of the document. */
Object readObject(const Json& json, const SharedJson& document);

/** Fails at the place of a RAID section with the first mistake in it. */
void checkRaid(const Json& section, const Json& place);

} // namespace morvath::sim
