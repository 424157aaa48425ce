// SPDX-License-Identifier: Apache-2.0
#include "bus/call.hpp"

#include "base/required.hpp"
#include "bus/process_bus.hpp"

#include <systemd/sd-bus.h>

namespace morvath
{

Request::Request(const char* service, const char* path, const char* interface,
                 const char* member) :
    message(processBus.new_method_call(service, path, interface, member))
{}

Request& Request::append(char type, const void* value)
{
    sd_bus_message_append_basic(message.get(), type, value);
    return *this;
}

Request& Request::append(const char* const* texts)
{
    open('a', "s");
    for (; *texts; ++texts)
    {
        append(*texts);
    }
    return close();
}

Request& Request::open(char type, const char* contents)
{
    sd_bus_message_open_container(message.get(), type, contents);
    return *this;
}

Request& Request::close()
{
    sd_bus_message_close_container(message.get());
    return *this;
}

sdbusplus::message_t Request::call() { return processBus.call(message); }

} // namespace morvath
