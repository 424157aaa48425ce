// SPDX-License-Identifier: Apache-2.0
#include <sdbusplus/bus.hpp>

namespace sdbusplus::bus
{

bus::bus(sd_bus* taken, std::false_type) : connection(taken)
{
    if (taken)
    {
        get_unique_name();
    }
}

std::string bus::get_unique_name()
{
    const char* name = nullptr;
    sd_bus_get_unique_name(connection.get(), &name);
    return name;
}

message_t bus::new_method_call(const char* service, const char* path,
                               const char* interface, const char* member)
{
    sd_bus_message* request = nullptr;
    const int result = sd_bus_message_new_method_call(
        connection.get(), &request, service, path, interface, member);
    if (result < 0)
    {
        throw exception::SdBusError(-result, "sd_bus_message_new_method_call");
    }
    return {request, std::false_type()};
}

message_t bus::call(message_t& request, std::optional<SdBusDuration> timeout)
{
    sd_bus_error error{};
    sd_bus_message* reply = nullptr;
    const int result =
        sd_bus_call(connection.get(), request.get(),
                    timeout.value_or(SdBusDuration(0)).count(), &error, &reply);
    if (result < 0)
    {
        throw exception::SdBusError(&error, "sd_bus_call");
    }
    return {reply, std::false_type()};
}

} // namespace sdbusplus::bus
