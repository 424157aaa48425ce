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

/** A property as a scenario has it. */
Json property(const std::string& type, const Json& value);

/** A text property. */
Json text(const std::string& value);

} // namespace morvath::tests
