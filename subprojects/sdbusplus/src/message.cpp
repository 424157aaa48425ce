// SPDX-License-Identifier: Apache-2.0
#include <sdbusplus/message.hpp>

namespace sdbusplus::message
{
namespace details
{
namespace
{

int checked(int result, const char* failure)
{
    if (result < 0)
    {
        throw exception::SdBusError(-result, failure);
    }
    return result;
}

} // namespace

void read_basic(sd_bus_message* m, char type, void* value, const char* failure)
{
    checked(sd_bus_message_read_basic(m, type, value), failure);
}

void enter(sd_bus_message* m, char type, const char* contents,
           const char* failure)
{
    checked(sd_bus_message_enter_container(m, type, contents), failure);
}

void leave(sd_bus_message* m, const char* failure)
{
    checked(sd_bus_message_exit_container(m), failure);
}

bool at_end(sd_bus_message* m, const char* failure)
{
    return checked(sd_bus_message_at_end(m, false), failure) != 0;
}

bool holds(sd_bus_message* m, const char* contents)
{
    return checked(sd_bus_message_verify_type(m, 'v', contents),
                   "sd_bus_message_verify_type variant") != 0;
}

void skip_variant(sd_bus_message* m)
{
    checked(sd_bus_message_skip(m, "v"), "sd_bus_message_skip variant");
}

} // namespace details

message::message(sd_bus_message* m) : handle(sd_bus_message_ref(m)) {}

message::~message() { sd_bus_message_unref(handle); }

} // namespace sdbusplus::message
