// SPDX-License-Identifier: Apache-2.0
#include "sim/platform.hpp"
#include "sim/runner.hpp"
#include "support/machine.hpp"
#include "support/program.hpp"

#include <gtest/gtest.h>
#include <signal.h>

#include <string>

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

TEST(Process, EndsWhileItLoadsWithoutAName)
{
    // A bus that hears a greeting and goes away. Its end of the socket does
    // not block, so it asks until there is something to hear.
    const auto ended = consumer("'unixexec:path=sh,argv1=-c,argv2="
                                "until head -c1 >/dev/null 2>&1%3B do :%3B "
                                "done'",
                                "call");
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
