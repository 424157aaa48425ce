// SPDX-License-Identifier: Apache-2.0
#include "sim/daemon.hpp"

#include "sim/sd_bus.hpp"

#include <signal.h>
#include <sys/mman.h>
#include <systemd/sd-id128.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <string_view>

namespace morvath::sim
{

// An abstract socket vanishes with its owner, where a file would stay. The
// limits allow for many services and for large replies.
constexpr std::string_view configurationHead =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
 <type>session</type>
 <keep_umask/>
 <auth>EXTERNAL</auth>
 <policy context="default">
  <allow send_destination="*" eavesdrop="true"/>
  <allow eavesdrop="true"/>
  <allow own="*"/>
 </policy>
 <limit name="max_completed_connections">100000</limit>
 <limit name="max_connections_per_user">100000</limit>
 <limit name="max_replies_per_connection">50000</limit>
 <limit name="max_incoming_bytes">1000000000</limit>
 <limit name="max_outgoing_bytes">1000000000</limit>
 <limit name="max_message_size">134217728</limit>
 <listen>unix:abstract=morvath-sim-)";
constexpr std::string_view configurationTail = "</listen>\n</busconfig>\n";

namespace
{

std::string configuration()
{
    sd_id128_t id;
    check(sd_id128_randomize(&id), "sd_id128_randomize");
    std::array<char, SD_ID128_STRING_MAX> name{};
    std::string text(configurationHead);
    text += sd_id128_to_string(id, name.data());
    return text.append(configurationTail);
}

/** A file without a name, positioned at its start. */
Descriptor unnamedFile(const std::string& contents)
{
    Descriptor file(memfd_create("morvath-sim", MFD_CLOEXEC), "memfd_create");
    const ssize_t written =
        pwrite(file.get(), contents.data(), contents.size(), 0);
    if (written != static_cast<ssize_t>(contents.size()))
    {
        throw std::runtime_error("the bus configuration cannot be written");
    }
    return file;
}

Process startDaemon(const Descriptor& addressOutput, const Descriptor& messages)
{
    const Descriptor file = unnamedFile(configuration());
    const ProcessOptions options{.environment = {},
                                 .output = addressOutput.get(),
                                 .error = messages.get(),
                                 .inherited = file.get(),
                                 .ownSession = true,
                                 .deathSignal = SIGKILL};
    return {{"dbus-daemon",
             "--config-file=/dev/fd/" + std::to_string(file.get()), "--nofork",
             "--nopidfile", "--nosyslog", "--print-address=1"},
            options};
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

std::string contentsOf(const Descriptor& file)
{
    std::array<char, 1000> text{};
    const ssize_t size = pread(file.get(), text.data(), text.size(), 0);
    return {text.data(), static_cast<std::size_t>(size < 0 ? 0 : size)};
}

} // namespace

// The daemon also warns of harmless things, so its messages are kept and
// shown only when it does not start.
Daemon::Daemon() : Daemon(Pipe(), unnamedFile("")) {}

Daemon::Daemon(Pipe addressPipe, const Descriptor& messages) :
    process_(startDaemon(addressPipe.writeEnd, messages))
{
    addressPipe.writeEnd.close();
    address_ = readLine(addressPipe.readEnd);
    if (address_.empty())
    {
        throw std::runtime_error("dbus-daemon did not start: " +
                                 contentsOf(messages));
    }
}

} // namespace morvath::sim
