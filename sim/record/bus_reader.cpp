// SPDX-License-Identifier: Apache-2.0
#include "sim/record/bus_reader.hpp"

#include "sim/request.hpp"
#include "sim/scenario.hpp"

#include <array>
#include <cerrno>
#include <cstdint>
#include <system_error>

namespace morvath::sim
{

namespace
{

struct Error : sd_bus_error
{
    Error() : sd_bus_error{} {}
    Error(const Error&) = delete;
    Error& operator=(const Error&) = delete;
    ~Error()
    {
        sd_bus_error_free(this);
    }
};

/** Errors after which there is nobody left to ask. */
constexpr std::array lostErrors{SD_BUS_ERROR_TIMEOUT,
                                SD_BUS_ERROR_SERVICE_UNKNOWN,
                                SD_BUS_ERROR_NAME_HAS_NO_OWNER};

[[noreturn]] void refuse(const sd_bus_error& error)
{
    const std::string text =
        error.name + (error.message == nullptr
                          ? std::string()
                          : " (" + std::string(error.message) + ")");
    for (const char* lost : lostErrors)
    {
        if (sd_bus_error_has_name(&error, lost))
        {
            throw ServiceLost(text);
        }
    }
    if (sd_bus_error_has_name(&error, SD_BUS_ERROR_UNKNOWN_OBJECT))
    {
        throw ObjectGone(text);
    }
    throw BusError(error.name, text);
}

Message newCall(sd_bus* bus, const Source& source, std::string_view interface,
                const char* member, const std::vector<Value>& arguments)
{
    sd_bus_message* raw = nullptr;
    check(sd_bus_message_new_method_call(
              bus, &raw, source.service.c_str(), source.path.c_str(),
              std::string(interface).c_str(), member),
          "calling it");
    Message call(raw);
    for (const Value& argument : arguments)
    {
        append(raw, argument);
    }
    return call;
}

std::vector<std::string> texts(const Value& list)
{
    std::vector<std::string> result;
    for (const Value& text : list.members())
    {
        result.push_back(*text.text());
    }
    return result;
}

} // namespace

BusReader::BusReader(const std::string& address,
                     std::chrono::microseconds patience) :
    bus_(openBus(address)),
    patience_(patience)
{}

Value BusReader::ask(const Source& source, std::string_view interface,
                     const char* member, const std::vector<Value>& arguments,
                     const char* answerType)
{
    try
    {
        const Message call =
            newCall(bus_.get(), source, interface, member, arguments);
        Error error;
        sd_bus_message* raw = nullptr;
        const int result = sd_bus_call(
            bus_.get(), call.get(),
            static_cast<std::uint64_t>(patience_.count()), &error, &raw);
        const Message answer(raw);
        if (result < 0 && sd_bus_is_open(bus_.get()) <= 0)
        {
            throw std::runtime_error("the bus went away");
        }
        if (result < 0)
        {
            refuse(error);
        }
        if (sd_bus_message_has_signature(raw, answerType) <= 0)
        {
            check(-EBADMSG, "the type of the answer");
        }
        return readValue(raw);
    }
    catch (const std::system_error& error)
    {
        throw BusError(SD_BUS_ERROR_FAILED, error.what());
    }
}

MappedObjects BusReader::mappedObjects()
{
    const Value answer =
        ask({mapperPath, mapperService}, mapperService, "GetSubTree",
            {{"s", "/"}, {"i", 0}, {"as", Value::Members{}}}, "a{sa{sas}}");
    MappedObjects objects;
    for (const Value& object : answer.members())
    {
        auto& owners = objects[*object.members()[0].text()];
        for (const Value& owner : object.members()[1].members())
        {
            owners[*owner.members()[0].text()] = texts(owner.members()[1]);
        }
    }
    return objects;
}

std::string BusReader::introspection(const Source& source)
{
    return *ask(source, introspectableInterface, "Introspect", {}, "s").text();
}

Json BusReader::properties(const Source& source, const std::string& interface)
{
    const Value answer =
        ask(source, propertiesInterface, "GetAll", {{"s", interface}}, "a{sv}");
    Json list = Json::array();
    for (const Value& entry : answer.members())
    {
        list.push_back(Json::array(
            {*entry.members()[0].text(), toJson(entry.members()[1])}));
    }
    return list;
}

Json BusReader::property(const Source& source, const std::string& interface,
                         const std::string& name)
{
    return toJson(ask(source, propertiesInterface, "Get",
                      {{"s", interface}, {"s", name}}, "v"));
}

} // namespace morvath::sim
