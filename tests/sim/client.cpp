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
                   const std::vector<Value>& arguments)
{
    sd_bus_message* raw = nullptr;
    sim::check(sd_bus_message_new_method_call(bus(), &raw, service.c_str(),
                                              path.c_str(), interface.c_str(),
                                              member.c_str()),
               "sd_bus_message_new_method_call");
    const sim::Message call(raw);
    for (const Value& argument : arguments)
    {
        sim::append(raw, argument);
    }
    sd_bus_error error{};
    sd_bus_message* answer = nullptr;
    if (sd_bus_call(bus(), raw, patience, &error, &answer) < 0)
    {
        Reply reply{error.name, error.message ? error.message : "", error.name};
        sd_bus_error_free(&error);
        return reply;
    }
    const sim::Message owned(answer);
    const auto values = sim::readValues(answer);
    return {"", "", values.empty() ? Json() : sim::toJson(values.front())};
}

Reply Client::get(const std::string& service, const std::string& path,
                  const std::string& interface, const std::string& name)
{
    Reply reply =
        call(service, path, properties, "Get", {text(interface), text(name)});
    if (reply.error.empty())
    {
        reply.value = Json(reply.value.at("value"));
    }
    return reply;
}

Reply Client::getAll(const std::string& service, const std::string& path,
                     const std::string& interface)
{
    return call(service, path, properties, "GetAll", {text(interface)});
}

Reply Client::set(const std::string& service, const std::string& path,
                  const std::string& interface, const std::string& name,
                  const Value& value)
{
    return call(service, path, properties, "Set",
                {text(interface), text(name), {"v", Value::Members{value}}});
}

Reply Client::mapper(const std::string& member,
                     const std::vector<Value>& arguments)
{
    return call("xyz.openbmc_project.ObjectMapper",
                "/xyz/openbmc_project/object_mapper",
                "xyz.openbmc_project.ObjectMapper", member, arguments);
}

Value text(const std::string& text)
{
    return {"s", text};
}

Value texts(const std::vector<std::string>& texts)
{
    Value::Members members;
    for (const std::string& entry : texts)
    {
        members.push_back(text(entry));
    }
    return {"as", members};
}

} // namespace morvath::tests
