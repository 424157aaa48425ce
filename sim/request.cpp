// SPDX-License-Identifier: Apache-2.0
#include "sim/request.hpp"

#include <system_error>

namespace morvath::sim
{

namespace
{

std::string_view viewOf(const char* text)
{
    return text == nullptr ? std::string_view() : std::string_view(text);
}

std::optional<std::vector<Value>> readArguments(sd_bus_message* message)
{
    try
    {
        return readValues(message);
    }
    catch (const std::system_error&)
    {
        return std::nullopt;
    }
}

} // namespace

Request::Request(sd_bus_message* call, std::string_view serviceName) :
    message(call),
    service(serviceName),
    destination(viewOf(sd_bus_message_get_destination(call))),
    path(viewOf(sd_bus_message_get_path(call))),
    interface(viewOf(sd_bus_message_get_interface(call))),
    member(viewOf(sd_bus_message_get_member(call))),
    signature(viewOf(sd_bus_message_get_signature(call, true))),
    arguments(readArguments(call))
{}

void Request::expectArguments(std::string_view types) const
{
    if (signature == types && arguments)
    {
        return;
    }
    throw BusError(SD_BUS_ERROR_INVALID_ARGS,
                   "Invalid arguments '" + std::string(signature) +
                       "' to call " + std::string(interface) + "." +
                       std::string(member) + "(), expecting '" +
                       std::string(types) + "'.");
}

std::string_view Request::text(std::size_t index) const
{
    if (!arguments || index >= arguments->size())
    {
        return {};
    }
    const std::string* text = (*arguments)[index].text();
    return text == nullptr ? std::string_view() : std::string_view(*text);
}

} // namespace morvath::sim
