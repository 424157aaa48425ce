// SPDX-License-Identifier: Apache-2.0
#include "sim/sd_bus.hpp"

#include <system_error>

namespace morvath::sim
{

constexpr const char* connecting = "connecting to the bus";

int check(int result, const char* operation)
{
    if (result < 0)
    {
        throw std::system_error(-result, std::generic_category(), operation);
    }
    return result;
}

Message newReply(sd_bus_message* call)
{
    sd_bus_message* reply = nullptr;
    check(sd_bus_message_new_method_return(call, &reply),
          "sd_bus_message_new_method_return");
    return Message(reply);
}

Bus openBus(const std::string& address)
{
    sd_bus* bus = nullptr;
    if (address.empty())
    {
        check(sd_bus_open(&bus), connecting);
        return Bus(bus);
    }
    check(sd_bus_new(&bus), "sd_bus_new");
    Bus owned(bus);
    check(sd_bus_set_address(bus, address.c_str()), "sd_bus_set_address");
    check(sd_bus_set_bus_client(bus, true), "sd_bus_set_bus_client");
    check(sd_bus_start(bus), connecting);
    return owned;
}

} // namespace morvath::sim
