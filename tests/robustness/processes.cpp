// SPDX-License-Identifier: Apache-2.0
#include "sim/platform.hpp"
#include "sim/runner.hpp"
#include "support/machine.hpp"
#include "support/program.hpp"

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cstddef>
#include <string>
#include <thread>

namespace morvath::tests::processes
{

Outcome consumer(const std::string& busAddress, const std::string& steps)
{
    return run("env DBUS_SESSION_BUS_ADDRESS=" + busAddress + " CONSUMER",
               steps);
}

TEST(Process, LoadsWithoutABus)
{
    const auto none = consumer("unix:path=/none", "call call");
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(none.output, "0 bus-error \n0 bus-error \n");
    EXPECT_EQ(none.errors, "");
}

/** A bus that takes one connection, hears a greeting and goes away. */
class VanishingBus
{
  public:
    VanishingBus()
    {
        sockaddr_un any{AF_UNIX, {}};
        auto* address = reinterpret_cast<sockaddr*>(&any);
        socklen_t size = sizeof(any.sun_family);
        bind(listener.get(), address, size);
        listen(listener.get(), 1);
        size = sizeof(any);
        getsockname(listener.get(), address, &size);
        // The system chose an abstract name, which follows a zero.
        name.assign(any.sun_path + 1,
                    size - offsetof(sockaddr_un, sun_path) - 1);
        thread = std::jthread([this] { greetOne(); });
    }

    std::string address() const { return "unix:abstract=" + name; }

  private:
    static bool isReadable(const sim::Descriptor& descriptor)
    {
        constexpr int deadline = 60'000;
        pollfd request{descriptor.get(), POLLIN, 0};
        return poll(&request, 1, deadline) == 1;
    }

    void greetOne() const
    {
        if (isReadable(listener))
        {
            const sim::Descriptor connection(
                accept(listener.get(), nullptr, nullptr), "accept");
            isReadable(connection);
        }
    }

    const sim::Descriptor listener{
        socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket"};
    std::string name;
    std::jthread thread;
};

TEST(Process, EndsWhileItLoadsWithoutAName)
{
    const VanishingBus bus;
    const auto ended = consumer(bus.address(), "call");
    EXPECT_EQ(ended.status, 128 + SIGABRT);
    EXPECT_EQ(ended.output, "");
}

TEST(Process, KeepsItsConnectionThroughTheForkOfAnother)
{
    const sim::Platform platform(Machine::smallServer().scenario());
    const auto forked = consumer("$DBUS_SESSION_BUS_ADDRESS", "call fork call");
    EXPECT_EQ(forked.status, 0);
    EXPECT_EQ(forked.output, "0 \n-1 0 \nchild 0\n0 \n");
    EXPECT_EQ(forked.errors, "");
}

TEST(Process, FailsAndEndsWellWithoutItsBus)
{
    const sim::Daemon bus;
    const sim::Platform platform(Machine::smallServer().scenario(),
                                 bus.address());
    const auto left =
        consumer("'" + bus.address() + "'",
                 "call 'kill -9 $(dbus-send --session --print-reply=literal "
                 "--dest=org.freedesktop.DBus / "
                 "org.freedesktop.DBus.GetConnectionUnixProcessID "
                 "string:org.freedesktop.DBus | sed \"s/.* //\")' call call");
    EXPECT_EQ(left.status, 0);
    EXPECT_EQ(left.output, "0 \n-1 0 \n-1 0 \n");
    EXPECT_EQ(left.errors, "");
}

} // namespace morvath::tests::processes
