// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json_value.hpp"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>

namespace morvath::tests
{

using sim::Json;

struct Reply
{
    /** The error's name and text; empty after success. */
    std::string error;
    std::string message;
    /** The first value; the content of a variant, or the error's name. */
    Json value;

    bool operator==(const Reply&) const = default;
};

constexpr uint64_t patience = 20'000'000;

/** A bus client of its own, the library not involved. */
class Client
{
  public:
    /** @param[in] arguments  a list, unless there is one type or none */
    Reply call(const std::string& service, const std::string& path,
               const std::string& interface, const std::string& member,
               const std::string& types = {},
               const Json& arguments = Json::array());

    Reply get(const std::string& service, const std::string& path,
              const std::string& interface, const std::string& name);
    Reply getAll(const std::string& service, const std::string& path,
                 const std::string& interface);
    Reply set(const std::string& service, const std::string& path,
              const std::string& interface, const std::string& name,
              const std::string& type, const Json& value);
    Reply mapper(const std::string& member, const std::string& types,
                 const Json& arguments);

    sd_bus* bus() { return connection.get(); }

  private:
    const sim::Bus connection = sim::openBus("");
};

} // namespace morvath::tests
