// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/behaviour.hpp"
#include "sim/fault.hpp"
#include "sim/json_cursor.hpp"
#include "sim/value.hpp"

#include <cstddef>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace morvath::sim
{

constexpr const char* mapperService = "xyz.openbmc_project.ObjectMapper";
constexpr const char* mapperPath = "/xyz/openbmc_project/object_mapper";

struct Property
{
    std::string name;
    Value value;
    bool readOnly = false;
    /** Left out of GetAll, readable with Get. */
    bool hidden = false;
    /** The only texts that may be set; empty when any value may be. */
    std::vector<std::string> enumeration{};
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
class Scenario
{
  public:
    /**
     * @param[in] sourceName  names the text in error messages; a scenario
     *                        that it extends is looked for beside it
     * @throws ScenarioError
     */
    static Scenario parse(std::string_view json, std::string_view sourceName);

    /** Reads a file. @throws ScenarioError, also when it cannot be read */
    static Scenario load(const std::filesystem::path& file);

    /** The server that comes with the program. */
    static Scenario standard();

    const std::string& description() const noexcept
    {
        return description_;
    }

    const std::vector<Object>& objects() const noexcept
    {
        return objects_;
    }

    const std::vector<Fault>& faults() const noexcept
    {
        return faults_;
    }

    const std::set<Behaviour>& behaviours() const noexcept
    {
        return behaviours_;
    }

    /** What the simulated RAID management library serves. */
    const Json& raid() const noexcept
    {
        return raid_;
    }

    bool hasMapper() const noexcept
    {
        return hasMapper_;
    }

    /** The names of all services, the object mapper not among them. */
    std::set<std::string> services() const;

  private:
    friend class ScenarioReader;

    std::string description_;
    std::vector<Object> objects_;
    std::vector<Fault> faults_;
    std::set<Behaviour> behaviours_;
    Json raid_{{"manager_present", false}};
    bool hasMapper_ = true;
};

} // namespace morvath::sim
