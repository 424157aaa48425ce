// SPDX-License-Identifier: Apache-2.0
#include "sim/daemon.hpp"

#include "sim/sd_bus.hpp"

#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <systemd/sd-id128.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace morvath::sim
{
namespace
{

// An abstract socket vanishes with its owner, where a file would stay.
constexpr std::string_view addressStart = "unix:abstract=";

constexpr auto journalSocket = "/run/systemd/journal/socket";

// Everybody may do everything. The limits allow for many services and for
// large replies.
constexpr auto rules =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
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
)";

std::string newAddress()
{
    sd_id128_t id;
    check(sd_id128_randomize(&id), "sd_id128_randomize");
    std::array<char, SD_ID128_STRING_MAX> name{};
    std::string address(addressStart);
    return address.append("morvath-sim-")
        .append(sd_id128_to_string(id, name.data()));
}

std::string configurationFor(BusProgram program, const std::string& address)
{
    // The other one gets its socket, and knows nothing else.
    const auto own = program == BusProgram::daemon
                         ? " <type>session</type>\n <keep_umask/>\n"
                           " <auth>EXTERNAL</auth>\n <listen>" +
                               address + "</listen>\n"
                         : std::string();
    return rules + own + "</busconfig>\n";
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
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) +
                                             1 + name.size());
    if (bind(listener.get(), reinterpret_cast<const sockaddr*>(&where), size) <
            0 ||
        listen(listener.get(), SOMAXCONN) < 0)
    {
        throw std::system_error(errno, std::generic_category(), "bind");
    }
    return listener;
}

/** The first line; shorter when the other side ends before. */
std::string readLine(const Descriptor& input)
{
    std::string line;
    char character = 0;
    while (read(input.get(), &character, 1) == 1 && character != '\n')
    {
        line += character;
    }
    return line;
}

Process startDaemon(const MemoryFile& configuration, const MemoryFile& messages)
{
    Pipe ready;
    Process process({"dbus-daemon", "--config-file=" + configuration.path(),
                     "--nofork", "--nopidfile", "--nosyslog",
                     "--print-address=1"},
                    {.environment = {},
                     .output = ready.writeEnd.get(),
                     .error = messages.descriptor().get(),
                     .ownSession = true,
                     .deathSignal = SIGKILL});
    ready.writeEnd.close();
    readLine(ready.readEnd);
    return process;
}

Process startBroker(const std::string& address, const MemoryFile& configuration,
                    const MemoryFile& messages)
{
    if (access(journalSocket, W_OK) < 0)
    {
        throw std::runtime_error(std::string("dbus-broker needs the journal's "
                                             "socket, ") +
                                 journalSocket);
    }
    const auto listener = listenAt(address);
    // The launcher is itself a client of the bus that it launches.
    return {{"dbus-broker-launch", "--scope", "user", "--config-file",
             configuration.path()},
            {.environment = {{"DBUS_SESSION_BUS_ADDRESS", address}},
             .output = messages.descriptor().get(),
             .error = messages.descriptor().get(),
             .listening = listener.get(),
             .ownSession = true,
             .deathSignal = SIGKILL}};
}

/** The first line. */
std::string beginningOf(const MemoryFile& file)
{
    std::array<char, 1000> text{};
    const auto size =
        pread(file.descriptor().get(), text.data(), text.size(), 0);
    const std::string all(text.data(),
                          static_cast<std::size_t>(size < 0 ? 0 : size));
    return all.substr(0, all.find('\n'));
}

} // namespace

Daemon::Daemon(BusProgram program) :
    busAddress(newAddress()),
    configuration(configurationFor(program, busAddress)),
    messages(""),
    process(program == BusProgram::daemon
                ? startDaemon(configuration, messages)
                : startBroker(busAddress, configuration, messages))
{
    try
    {
        const auto bus = openBus(busAddress);
        const char* name = nullptr;
        check(sd_bus_get_unique_name(bus.get(), &name), "connecting");
    }
    catch (const std::system_error& error)
    {
        throw std::runtime_error(std::string("the bus did not start: ") +
                                 error.what() + ": " + beginningOf(messages));
    }
}

} // namespace morvath::sim
