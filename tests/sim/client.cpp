// SPDX-License-Identifier: Apache-2.0
#include "client.hpp"

#include <stdexcept>

namespace morvath::tests
{

Json Reply::shown() const
{
    if (!error.empty())
    {
        return error;
    }
    return values.empty() ? Json() : sim::toJson(values.front());
}

std::vector<std::string> Reply::names() const
{
    std::vector<std::string> result;
    for (const Value& entry : values.at(0).members())
    {
        result.push_back(*entry.members().at(0).text());
    }
    return result;
}

Client::Client()
{
    sd_bus* bus = nullptr;
    sim::check(sd_bus_open(&bus), "sd_bus_open");
    bus_.reset(bus);
}

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
        Reply reply{
            error.name, error.message == nullptr ? "" : error.message, {}};
        sd_bus_error_free(&error);
        return reply;
    }
    const sim::Message owned(answer);
    return {"", "", sim::readValues(answer)};
}

Reply Client::get(const std::string& service, const std::string& path,
                  const std::string& interface, const std::string& name)
{
    Reply reply = call(service, path, "org.freedesktop.DBus.Properties", "Get",
                       {text(interface), text(name)});
    if (reply.error.empty())
    {
        // Only the content of the variant is of interest.
        Value content = reply.values.at(0).members().at(0);
        reply.values = {std::move(content)};
    }
    return reply;
}

Reply Client::getAll(const std::string& service, const std::string& path,
                     const std::string& interface)
{
    return call(service, path, "org.freedesktop.DBus.Properties", "GetAll",
                {text(interface)});
}

Reply Client::set(const std::string& service, const std::string& path,
                  const std::string& interface, const std::string& name,
                  const Value& value)
{
    return call(service, path, "org.freedesktop.DBus.Properties", "Set",
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

Value number(std::int32_t number)
{
    return {"i", number};
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
