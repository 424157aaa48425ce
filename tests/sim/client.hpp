// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json_value.hpp"
#include "sim/scenario.hpp"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>

namespace morvath::tests
{

using sim::Json;

/** A bus client of its own, the library not involved. */
class Client
{
  public:
    /**
     * The first value that is answered, or the name of the error.
     * @param[in] arguments  texts, numbers, lists of texts and variants
     * @param[in] text       the type that the texts have
     */
    Json call(const std::string& service, const std::string& path,
              const std::string& interface, const std::string& member,
              const Json& arguments = Json::array(), const char* text = "s")
    {
        constexpr uint64_t patience = 20'000'000;
        sd_bus_message* raw = nullptr;
        sim::check(sd_bus_message_new_method_call(
            bus.get(), &raw, service.c_str(), path.c_str(), interface.c_str(),
            member.c_str()));
        const sim::Message call(raw);
        for (const auto& one : arguments)
        {
            const auto* type = one.is_object()   ? "v"
                               : one.is_array()  ? "as"
                               : one.is_number() ? "i"
                                                 : text;
            sim::append(raw, type, one);
        }
        sd_bus_error error{};
        sd_bus_message* answer = nullptr;
        if (sd_bus_call(bus.get(), raw, patience, &error, &answer) < 0)
        {
            Json name = error.name;
            message = error.message ? error.message : "";
            sd_bus_error_free(&error);
            return name;
        }
        message.clear();
        const sim::Message owned(answer);
        const auto values = sim::readJsonList(answer);
        return values.empty() ? Json() : values.front();
    }

    /** GetAll, Get or Set, by the number of arguments. */
    Json properties(const std::string& service, const std::string& path,
                    const Json& arguments)
    {
        constexpr const char* members[]{"GetAll", "Get", "Set"};
        const auto answer =
            call(service, path, std::string(sim::propertiesInterface),
                 members[arguments.size() - 1], arguments);
        return arguments.size() == 2 && answer.is_object() ? answer["value"]
                                                           : answer;
    }

    Json mapper(const std::string& member, const Json& arguments)
    {
        const std::string name = "xyz.openbmc_project.ObjectMapper";
        const auto takesPaths =
            member.starts_with("GetAssociated") && !member.ends_with("ById");
        return call(name, "/xyz/openbmc_project/object_mapper", name, member,
                    arguments, takesPaths ? "o" : "s");
    }

    const sim::Bus bus = sim::openBus("");
    /** The text of the error that the latest call ended with. */
    std::string message{};
};

} // namespace morvath::tests
