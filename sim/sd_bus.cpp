// SPDX-License-Identifier: Apache-2.0
#include "sim/sd_bus.hpp"

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
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
    check(sd_bus_message_new_method_return(call, &reply));
    return Message(reply);
}

Bus openBus(const std::string& address)
{
    constexpr auto connecting = "connecting to the bus";
    sd_bus* bus = nullptr;
    if (address.empty())
    {
        check(sd_bus_open(&bus), connecting);
        return Bus(bus);
    }
    check(sd_bus_new(&bus));
    Bus owned(bus);
    check(sd_bus_set_address(bus, address.c_str()), connecting);
    check(sd_bus_set_bus_client(bus, true));
    check(sd_bus_start(bus), connecting);
    return owned;
}

EventLoop newEventLoop()
{
    sd_event* events = nullptr;
    check(sd_event_new(&events), "sd_event_new");
    return EventLoop(events);
}

Bus openNothing()
{
    std::array<int, 2> ends{};
    const auto made = socketpair(
        AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends.data());
    check(made < 0 ? -errno : 0, "socketpair");
    sd_bus* bus = nullptr;
    check(sd_bus_new(&bus));
    Bus owned(bus);
    check(sd_bus_set_fd(bus, ends[0], ends[0]));
    const auto started = sd_bus_start(bus);
    close(ends[1]);
    check(started);
    return owned;
}

} // namespace morvath::sim
