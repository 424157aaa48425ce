// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/platform.hpp"
#include "sim/scenario.hpp"

#include <nlohmann/json.hpp>

#include <string>

namespace morvath::tests
{

using Json = nlohmann::ordered_json;

/** A small scenario, put together object by object. */
class Machine
{
  public:
    /** The default server, to be changed. */
    static Machine server();

    /**
     * The same with two objects of a kind at most, so that a loop over all
     * calls stays short. All that an export can ask for succeeds on it.
     */
    static Machine smallServer();

    Machine& owns(const std::string& path, const std::string& service,
                  const Json& interfaces);
    Machine& without(const std::string& path);
    Machine& fault(const Json& when, const Json& then);
    Machine& withoutMapper();
    Machine& behaves(const std::string& behaviour);

    sim::Scenario scenario() const;

  private:
    Json document{{"format", 1},
                  {"description", "a machine for tests"},
                  {"objects", Json::array()},
                  {"faults", Json::array()}};
};

/** The same with one fault; a scenario is not read anew for it. */
sim::Scenario withFault(sim::Scenario scenario, const Json& when,
                        const Json& then);

/** A property as a scenario has it. */
Json property(const std::string& type, const Json& value);

/** A text property. */
Json text(const std::string& value);

} // namespace morvath::tests
