// SPDX-License-Identifier: Apache-2.0
#include "sim/sd_bus.hpp"

#include <system_error>

namespace morvath::sim
{

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

} // namespace morvath::sim
