// SPDX-License-Identifier: Apache-2.0
#include "sim/runner.hpp"

#include "cli/terminal_text.hpp"
#include "sim/platform.hpp"

#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <systemd/sd-id128.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <numeric>
#include <system_error>

namespace morvath::sim
{
namespace
{

// An abstract socket vanishes with its owner, where a file would stay.
constexpr std::string_view addressStart = "unix:abstract=";

constexpr auto journalSocket = "/run/systemd/journal/socket";

// Everybody may do everything. The limits allow for many services and for
// large replies. The socket is handed over as systemd does it.
constexpr auto busRules =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
 <type>session</type>
 <keep_umask/>
 <auth>EXTERNAL</auth>
 <listen>systemd:</listen>
 <policy context="default">
  <allow send_destination="*"/>
  <allow receive_sender="*"/>
  <allow own="*"/>
 </policy>
 <limit name="max_completed_connections">100000</limit>
 <limit name="max_connections_per_user">100000</limit>
 <limit name="max_replies_per_connection">50000</limit>
 <limit name="max_incoming_bytes">1000000000</limit>
 <limit name="max_outgoing_bytes">1000000000</limit>
 <limit name="max_message_size">134217728</limit>
</busconfig>
)";

std::string newAddress()
{
    sd_id128_t id;
    check(sd_id128_randomize(&id), "sd_id128_randomize");
    std::array<char, SD_ID128_STRING_MAX> name{};
    return std::string(addressStart) + "morvath-sim-" +
           sd_id128_to_string(id, name.data());
}

/** A socket that waits at an address. */
Descriptor listenAt(const std::string& address)
{
    Descriptor listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0),
                        "socket");
    const auto name = address.substr(addressStart.size());
    sockaddr_un where{AF_UNIX, {}};
    // Abstract names follow a zero.
    std::ranges::copy(name, where.sun_path + 1);
    const auto size = offsetof(sockaddr_un, sun_path) + 1 + name.size();
    const auto bound =
        bind(listener.get(), reinterpret_cast<const sockaddr*>(&where),
             static_cast<socklen_t>(size));
    check(bound < 0 || listen(listener.get(), SOMAXCONN) < 0 ? -errno : 0,
          "bind");
    return listener;
}

/** The program that is the bus, at a socket that is its standard input. */
std::vector<std::string> busCommand(bool isBroker, const std::string& address,
                                    const std::string& configuration)
{
    if (isBroker && access(journalSocket, W_OK) < 0)
    {
        throw std::runtime_error(std::string("dbus-broker needs the journal's "
                                             "socket, ") +
                                 journalSocket);
    }
    const std::string program =
        isBroker ? "dbus-broker-launch --scope user --config-file $2"
                 : "dbus-daemon --nofork --nopidfile --nosyslog "
                   "--config-file=$2";
    // Away from the terminal, so that its signals do not get there. The
    // launcher is itself a client of the bus that it launches.
    const auto script =
        "LISTEN_FDS=1 LISTEN_PID=$$ DBUS_SESSION_BUS_ADDRESS=$1 exec setsid " +
        program + " 3<&0 </dev/null";
    return {"sh", "-c", script, "sh", address, configuration};
}

/** What ends the program, and what it waits for. */
const auto watchedSignals = [] {
    sigset_t signals;
    sigemptyset(&signals);
    for (const auto signal : {SIGINT, SIGTERM, SIGHUP, SIGCHLD})
    {
        sigaddset(&signals, signal);
    }
    return signals;
}();

/** To be called before there are other threads, which inherit it. */
void blockSignals() { sigprocmask(SIG_BLOCK, &watchedSignals, nullptr); }

siginfo_t nextSignal()
{
    siginfo_t info{};
    while (sigwaitinfo(&watchedSignals, &info) < 0)
    {
        continue;
    }
    return info;
}

int waitFor(Process& process)
{
    for (;;)
    {
        if (const auto status = process.status())
        {
            return *status;
        }
        const auto info = nextSignal();
        // What the terminal sends, it sends to the command as well.
        if (info.si_signo != SIGCHLD && info.si_code != SI_KERNEL)
        {
            process.send(info.si_signo);
        }
    }
}

/** Tells which faults no call has met; they may fail a run that succeeded. */
int withFaultsTold(int status, const Platform& platform,
                   const RunOptions& options)
{
    const auto places = platform.unusedFaults();
    for (const auto& place : places)
    {
        cli::complain(programName, place + ": no call has met this fault");
    }
    const auto fails =
        options.strict && !places.empty() && status == EXIT_SUCCESS;
    return fails ? EXIT_FAILURE : status;
}

} // namespace

Daemon::Daemon(bool isBroker) :
    busAddress(newAddress()),
    configuration(busRules),
    messages(""),
    process(busCommand(isBroker, busAddress, configuration.path()),
            {listenAt(busAddress).get(), messages.descriptor().get(),
             messages.descriptor().get()})
{
    try
    {
        const auto bus = openBus(busAddress);
        const char* name = nullptr;
        check(sd_bus_get_unique_name(bus.get(), &name), "connecting");
    }
    catch (const std::system_error& error)
    {
        std::string reason;
        std::getline(std::ifstream(messages.path()), reason);
        throw std::runtime_error(std::string("the bus did not start: ") +
                                 error.what() + ": " + reason);
    }
}

int runCommand(const Scenario& scenario, const RunOptions& options,
               const std::vector<std::string>& command)
{
    blockSignals();
    // In this order, so that names are released while there is still a bus.
    const Daemon daemon(options.usesBroker);
    MemoryFile raid(scenario.raid->dump());
    // For the command, and before there is a thread that may look.
    setenv("DBUS_STARTER_BUS_TYPE", "system", true);
    for (const auto* name : {"DBUS_STARTER_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS",
                             "DBUS_SESSION_BUS_ADDRESS"})
    {
        setenv(name, daemon.address().c_str(), true);
    }
    setenv("MORVATH_SIM_RAID", raid.path().c_str(), true);
    const Platform platform(scenario, {.busAddress = daemon.address(),
                                       .log = options.log,
                                       .raidChanged = [&](const Json& section) {
                                           raid.replace(section.dump());
                                       }});
    Process process(command);
    return withFaultsTold(waitFor(process), platform, options);
}

int serve(const Scenario& scenario, const RunOptions& options,
          const std::string& address)
{
    blockSignals();
    std::atomic_bool isLost = false;
    const Platform platform(
        scenario, {.busAddress = address, .log = options.log, .busLost = [&] {
                       isLost = true;
                       kill(getpid(), SIGTERM);
                   }});
    const auto objects = std::accumulate(
        scenario.objects.begin(), scenario.objects.end(), std::size_t{0},
        [](auto count, const auto& one) { return count + one.owners.size(); });
    std::printf("serving %zu objects of %zu services\n", objects,
                scenario.services().size());
    std::fflush(stdout);
    while (nextSignal().si_signo == SIGCHLD)
    {
        continue;
    }
    if (isLost)
    {
        cli::complain(programName, "the bus went away");
    }
    return withFaultsTold(isLost ? EXIT_FAILURE : EXIT_SUCCESS, platform,
                          options);
}

} // namespace morvath::sim
