// SPDX-License-Identifier: Apache-2.0
#include "sim/client.hpp"

namespace morvath::tests
{
namespace
{

constexpr auto properties = "org.freedesktop.DBus.Properties";

} // namespace

Reply Client::call(const std::string& service, const std::string& path,
                   const std::string& interface, const std::string& member,
                   const std::string& types, const Json& arguments)
{
    sd_bus_message* raw = nullptr;
    sim::check(sd_bus_message_new_method_call(bus(), &raw, service.c_str(),
                                              path.c_str(), interface.c_str(),
                                              member.c_str()),
               "sd_bus_message_new_method_call");
    const sim::Message call(raw);
    sim::appendValues(raw, types, arguments);
    sd_bus_error error{};
    sd_bus_message* answer = nullptr;
    if (sd_bus_call(bus(), raw, patience, &error, &answer) < 0)
    {
        Reply reply{error.name, error.message ? error.message : "", error.name};
        sd_bus_error_free(&error);
        return reply;
    }
    const sim::Message owned(answer);
    const auto values = sim::readJsonList(answer);
    return {"", "", values.empty() ? Json() : values.front()};
}

Reply Client::get(const std::string& service, const std::string& path,
                  const std::string& interface, const std::string& name)
{
    auto reply = call(service, path, properties, "Get", "ss",
                      Json::array({interface, name}));
    if (reply.error.empty())
    {
        reply.value = Json(reply.value.at("value"));
    }
    return reply;
}

Reply Client::getAll(const std::string& service, const std::string& path,
                     const std::string& interface)
{
    return call(service, path, properties, "GetAll", "s", interface);
}

Reply Client::set(const std::string& service, const std::string& path,
                  const std::string& interface, const std::string& name,
                  const std::string& type, const Json& value)
{
    return call(
        service, path, properties, "Set", "ssv",
        Json::array({interface, name, {{"type", type}, {"value", value}}}));
}

Reply Client::mapper(const std::string& member, const std::string& types,
                     const Json& arguments)
{
    return call("xyz.openbmc_project.ObjectMapper",
                "/xyz/openbmc_project/object_mapper",
                "xyz.openbmc_project.ObjectMapper", member, types, arguments);
}

} // namespace morvath::tests
