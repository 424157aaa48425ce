// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json_value.hpp"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>

namespace morvath::tests
{

using sim::Json;

constexpr auto propertiesInterface = "org.freedesktop.DBus.Properties";
constexpr uint64_t patience = 20'000'000;

/** A bus client of its own, the library not involved. */
class Client
{
  public:
    /**
     * The first value that is answered, or the name of the error.
     * @param[in] arguments  a list, unless there is one type or none
     */
    Json call(const std::string& service, const std::string& path,
              const std::string& interface, const std::string& member,
              const std::string& types = {},
              const Json& arguments = Json::array())
    {
        sd_bus_message* raw = nullptr;
        sim::check(sd_bus_message_new_method_call(
                       bus(), &raw, service.c_str(), path.c_str(),
                       interface.c_str(), member.c_str()),
                   "sd_bus_message_new_method_call");
        const sim::Message call(raw);
        message.clear();
        sim::appendValues(raw, types, arguments);
        sd_bus_error error{};
        sd_bus_message* answer = nullptr;
        if (sd_bus_call(bus(), raw, patience, &error, &answer) < 0)
        {
            Json name = error.name;
            message = error.message ? error.message : "";
            sd_bus_error_free(&error);
            return name;
        }
        const sim::Message owned(answer);
        const auto values = sim::readJsonList(answer);
        return values.empty() ? Json() : values.front();
    }

    /** The value of a property, or the name of the error. */
    Json get(const std::string& service, const std::string& path,
             const std::string& interface, const std::string& name)
    {
        const auto answer = call(service, path, propertiesInterface, "Get",
                                 "ss", Json::array({interface, name}));
        return answer.is_object() ? answer.at("value") : answer;
    }

    Json getAll(const std::string& service, const std::string& path,
                const std::string& interface)
    {
        return call(service, path, propertiesInterface, "GetAll", "s",
                    interface);
    }

    Json set(const std::string& service, const std::string& path,
             const std::string& interface, const std::string& name,
             const std::string& type, const Json& value)
    {
        const Json variant{{"type", type}, {"value", value}};
        return call(service, path, propertiesInterface, "Set", "ssv",
                    Json::array({interface, name, variant}));
    }

    Json mapper(const std::string& member, const std::string& types,
                const Json& arguments)
    {
        const std::string name = "xyz.openbmc_project.ObjectMapper";
        return call(name, "/xyz/openbmc_project/object_mapper", name, member,
                    types, arguments);
    }

    sd_bus* bus() { return connection.get(); }

    /** The text of the error that the latest call ended with. */
    std::string message{};

  private:
    const sim::Bus connection = sim::openBus("");
};

} // namespace morvath::tests
