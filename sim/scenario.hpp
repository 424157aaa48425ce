// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/changes.hpp"
#include "sim/faults.hpp"

#include <array>
#include <filesystem>
#include <functional>
#include <set>
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

class Service;

struct Property
{
    std::string name;
    std::string type;
    SharedJson value{};
    bool readOnly = false;
    /** Left out of GetAll, readable with Get. */
    bool hidden = false;
    /** The only texts that may be set; empty when any value may be. */
    std::vector<std::string> enumeration{};
    /** Once it is published. */
    Service* publisher = nullptr;
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
    static Scenario standard();

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

using AssociationAction =
    std::function<void(const std::string& forward, const std::string& backward,
                       const std::string& endpoint)>;

/** The associations that an object defines. */
void forEachAssociation(const std::vector<Interface>& interfaces,
                        const AssociationAction& action);

/** The path of the node above; "/" is its own. */
std::string_view parentOf(std::string_view path);

/** The texts of the scenarios that are built in. */
std::string_view defaultScenario();
std::string_view busyScenario();

/** Reads an object of a scenario that shares the document. */
Object readObject(const JsonCursor& json, const SharedJson& document);

/** Fails with the first mistake in a RAID section, at its place below. */
void checkRaid(const Json& section, const JsonCursor& place);

/** Fails unless the text is a name of a kind. */
void checkServiceName(const JsonCursor& place, const std::string& name);
void checkPath(const JsonCursor& place, const std::string& name);
void checkInterfaceName(const JsonCursor& place, const std::string& name);
void checkMemberName(const JsonCursor& place, const std::string& name);

/** Fails unless it is true. */
void readSwitch(const JsonCursor& json);

} // namespace morvath::sim
