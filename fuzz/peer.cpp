// SPDX-License-Identifier: Apache-2.0
#include "fuzz/peer.hpp"

#include "fuzz/values.hpp"
#include "fuzz/words.hpp"

#include <sys/socket.h>
#include <sys/un.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>

/*
 * Where the library expects the bus there is a socket with this at the other
 * end. It takes a thread, since the library's calls block. The library opens
 * its connection before main(), so the socket comes earlier still.
 */
namespace morvath::fuzz
{
namespace
{

constexpr uint16_t beforeTheLibrary = 101;
constexpr std::size_t mostWorking = 8;

/** How the calls of a member are answered; others with nothing. */
struct Shape
{
    const char* member;
    void (*append)(sd_bus_message* reply, Input& input);
};

constexpr std::array shapes{
    Shape{"Get", appendVariant},
    Shape{"GetAll", appendProperties},
    Shape{"GetSubTree", appendObjects},
    Shape{"GetSubTreePaths", appendPaths},
};

enum Kind
{
    fitting,
    fittingToo,
    fittingWithMore,
    anything,
    error,
    kinds,
};

/** Held by the thread except while it waits. */
constinit std::mutex busy;
constinit Input* current = nullptr;
constinit std::size_t working = 0;

void appendFitting(sd_bus_message* reply, const char* member, Input& input)
{
    for (const auto& shape : shapes)
    {
        if (std::strcmp(shape.member, member) == 0)
        {
            shape.append(reply, input);
        }
    }
}

int answer(sd_bus_message* call)
{
    Input zeros({});
    Input& input = working > 0 ? (--working, zeros) : *current;
    const auto kind = input.below(kinds);
    if (kind == error)
    {
        const auto* name = errors[input.below(errors.size())];
        return sd_bus_reply_method_errorf(call, name, "%s",
                                          input.text().c_str());
    }
    sd_bus_message* reply = nullptr;
    check(sd_bus_message_new_method_return(call, &reply));
    if (kind != anything)
    {
        appendFitting(reply, sd_bus_message_get_member(call), input);
    }
    if (kind == anything || kind == fittingWithMore)
    {
        appendAnything(reply, input);
    }
    const int result =
        sd_bus_send(sd_bus_message_get_bus(call), reply, nullptr);
    sd_bus_message_unref(reply);
    return result;
}

int onMessage(sd_bus_message* call, void*, sd_bus_error*)
{
    // Not so for what sd-bus tells about the end of the connection.
    if (sd_bus_message_is_method_call(call, nullptr, nullptr) <= 0)
    {
        return 0;
    }
    const int result = sd_bus_message_is_method_call(call, nullptr, "Hello") > 0
                           ? sd_bus_reply_method_return(call, "s", ":1.1")
                           : answer(call);
    check(result);
    return 1;
}

void serve(int listener)
{
    const int socket =
        accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    check(socket);
    sd_bus* bus = nullptr;
    check(sd_bus_new(&bus));
    check(sd_bus_set_fd(bus, socket, socket));
    check(sd_bus_set_server(bus, 1, sd_id128_t{}));
    check(sd_bus_add_filter(bus, nullptr, onMessage, nullptr));
    check(sd_bus_start(bus));
    // Ends when the library closes its connection.
    while (sd_bus_wait(bus, UINT64_MAX) >= 0)
    {
        const std::lock_guard lock(busy);
        while (sd_bus_process(bus, nullptr) > 0)
        {
            continue;
        }
    }
    sd_bus_flush_close_unref(bus);
}

[[gnu::constructor(beforeTheLibrary)]] void openBus()
{
    // An abstract name leaves nothing behind.
    const auto name = "morvath-fuzz-" + std::to_string(getpid());
    sockaddr_un address{AF_UNIX, {}};
    name.copy(&address.sun_path[1], sizeof(address.sun_path) - 1);
    const auto length = offsetof(sockaddr_un, sun_path) + 1 + name.size();

    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    check(bind(listener, reinterpret_cast<sockaddr*>(&address),
               static_cast<socklen_t>(length)));
    check(listen(listener, 1));
    setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:abstract=" + name).c_str(), 1);
    setenv("DBUS_STARTER_BUS_TYPE", "system", 1);
    std::thread(serve, listener).detach();
}

} // namespace

void answerFrom(Input* input)
{
    const std::lock_guard lock(busy);
    current = input;
    working = input ? input->below(mostWorking) : 0;
}

Input& answers() { return *current; }

} // namespace morvath::fuzz
