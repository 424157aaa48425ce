// SPDX-License-Identifier: Apache-2.0
#include "sim/runner.hpp"

#include "cli/terminal_text.hpp"
#include "sim/platform.hpp"
#include "sim/process.hpp"
#include "sim/scenario.hpp"

#include <nlohmann/json.hpp>
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
namespace
{

constexpr auto program = "morvath-sim";
constexpr int statusNotFound = 127;
constexpr int statusNotExecutable = 126;

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

/** Tells which faults no call has met; they may fail a run that succeeded. */
int withFaultsTold(int status, const Platform& platform,
                   const RunOptions& options)
{
    const auto places = platform.unusedFaults();
    for (const auto& place : places)
    {
        cli::complain(program, place + ": no call has met this fault");
    }
    const auto fails =
        options.strict && !places.empty() && status == EXIT_SUCCESS;
    return fails ? EXIT_FAILURE : status;
}

int runWith(const Daemon& daemon, const MemoryFile& raid,
            const std::vector<std::string>& command, const Descriptor& signals)
{
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
        cli::complain(program, error.what());
        return error.code() == std::errc::no_such_file_or_directory
                   ? statusNotFound
                   : statusNotExecutable;
    }
}

} // namespace

void blockEndSignals()
{
    const auto signals = watchedSignals();
    sigprocmask(SIG_BLOCK, &signals, nullptr);
}

int runCommand(const Scenario& scenario, const RunOptions& options,
               const std::vector<std::string>& command)
{
    const auto signals = signalDescriptor();
    // In this order, so that names are released while there is still a bus.
    const Daemon daemon(options.bus);
    MemoryFile raid(scenario.raid->dump());
    const auto replace = [&](const Json& section) {
        raid.replace(section.dump());
    };
    const Platform platform(
        scenario, Platform::Live{daemon.address(), options.log, replace});
    const auto status = runWith(daemon, raid, command, signals);
    return withFaultsTold(status, platform, options);
}

int serve(const Scenario& scenario, const RunOptions& options,
          const std::string& address)
{
    const auto signals = signalDescriptor();
    const Platform platform(scenario, Platform::Live{address, options.log});
    std::printf("serving %zu objects of %zu services\n", platform.objectCount(),
                platform.serviceCount());
    std::fflush(stdout);
    std::array<pollfd, 2> events{
        pollfd{signals.get(), POLLIN, 0},
        pollfd{platform.busLostDescriptor(), POLLIN, 0}};
    while (poll(events.data(), events.size(), -1) < 0 && errno == EINTR)
    {}
    const auto isLost = events[1].revents != 0;
    if (isLost)
    {
        cli::complain(program, "the bus went away");
    }
    return withFaultsTold(isLost ? EXIT_FAILURE : EXIT_SUCCESS, platform,
                          options);
}

} // namespace morvath::sim
