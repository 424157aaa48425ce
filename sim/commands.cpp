// SPDX-License-Identifier: Apache-2.0
#include "sim/commands.hpp"

#include "sim/daemon.hpp"
#include "sim/descriptor.hpp"
#include "sim/memory_file.hpp"
#include "sim/platform.hpp"
#include "sim/process.hpp"

#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

namespace morvath::sim
{

constexpr int statusNotFound = 127;
constexpr int statusNotExecutable = 126;

namespace
{

sigset_t watchedSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (int signal : {SIGINT, SIGTERM, SIGHUP, SIGCHLD})
    {
        sigaddset(&signals, signal);
    }
    return signals;
}

Descriptor signalDescriptor()
{
    const sigset_t signals = watchedSignals();
    return {signalfd(-1, &signals, SFD_CLOEXEC), "signalfd"};
}

signalfd_siginfo nextSignal(const Descriptor& signals)
{
    signalfd_siginfo info{};
    if (read(signals.get(), &info, sizeof(info)) !=
        static_cast<ssize_t>(sizeof(info)))
    {
        throw std::system_error(errno, std::generic_category(), "signalfd");
    }
    return info;
}

int waitFor(Process& process, const Descriptor& signals)
{
    while (!process.hasEnded())
    {
        const signalfd_siginfo info = nextSignal(signals);
        // What the terminal sends, it sends to the command as well.
        const bool isForUs =
            info.ssi_signo != SIGCHLD && info.ssi_code != SI_KERNEL;
        if (isForUs)
        {
            process.send(static_cast<int>(info.ssi_signo));
        }
    }
    return process.exitStatus();
}

} // namespace

void blockEndSignals()
{
    const sigset_t signals = watchedSignals();
    sigprocmask(SIG_BLOCK, &signals, nullptr);
}

int runCommand(const Scenario& scenario, const CallSink& sink,
               const std::vector<std::string>& command)
{
    const Descriptor signals = signalDescriptor();
    // In this order, so that names are released while there is still a bus.
    const Daemon daemon;
    const Platform platform(scenario, daemon.address(), sink);
    const MemoryFile raid(scenario.raid().dump());
    const ProcessOptions options{
        .environment = {{"DBUS_STARTER_BUS_TYPE", "system"},
                        {"DBUS_STARTER_ADDRESS", daemon.address()},
                        {"DBUS_SYSTEM_BUS_ADDRESS", daemon.address()},
                        {"DBUS_SESSION_BUS_ADDRESS", daemon.address()},
                        {"MORVATH_SIM_RAID", raid.path()}},
        .deathSignal = SIGTERM};
    try
    {
        Process process(command, options);
        return waitFor(process, signals);
    }
    catch (const std::system_error& error)
    {
        std::fprintf(stderr, "morvath-sim: %s\n", error.what());
        return error.code() == std::errc::no_such_file_or_directory
                   ? statusNotFound
                   : statusNotExecutable;
    }
}

int serve(const Scenario& scenario, const CallSink& sink,
          const std::string& address)
{
    const Descriptor signals = signalDescriptor();
    const Platform platform(scenario, address, sink);
    std::printf("serving %zu objects of %zu services\n", platform.objectCount(),
                platform.serviceCount());
    std::fflush(stdout);
    std::array<pollfd, 2> events{
        pollfd{signals.get(), POLLIN, 0},
        pollfd{platform.busLostDescriptor(), POLLIN, 0}};
    while (poll(events.data(), events.size(), -1) < 0 && errno == EINTR)
    {}
    if (events[1].revents != 0)
    {
        std::fputs("morvath-sim: the bus went away\n", stderr);
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

} // namespace morvath::sim
