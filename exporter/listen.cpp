// SPDX-License-Identifier: Apache-2.0
#include "listen.hpp"

#include "number.hpp"
#include "owned.hpp"

#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <systemd/sd-daemon.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace morvath::exporter
{
namespace
{

using Addresses = Owned<addrinfo, freeaddrinfo>;

constexpr int failed = -1;

int complain(const std::string& what, const char* why)
{
    std::fprintf(stderr, "morvath-exporter: %s: %s\n", what.c_str(), why);
    return failed;
}

Addresses resolve(const std::string& address)
{
    const auto colon = address.rfind(':');
    const auto behind = colon == address.npos ? "" : address.substr(colon + 1);
    const auto port = numberIn(behind).value_or(-1);
    // getaddrinfo() would take the lower bits.
    if (!(port >= 0 && port <= 65535))
    {
        complain(address, "an address is followed by a colon and a port");
        return nullptr;
    }
    auto host = address.substr(0, colon);
    if (host.starts_with('[') && host.ends_with(']'))
    {
        host = host.substr(1, host.size() - 2);
    }
    addrinfo wanted{};
    wanted.ai_flags = AI_PASSIVE | AI_NUMERICHOST | AI_NUMERICSERV;
    wanted.ai_family = host.empty() ? AF_INET6 : AF_UNSPEC;
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    const int error = getaddrinfo(host.empty() ? nullptr : host.c_str(),
                                  address.c_str() + colon + 1, &wanted, &found);
    if (error != 0)
    {
        complain(address, gai_strerror(error));
    }
    return Addresses(found);
}

} // namespace

int listenAt(const std::string& address)
{
    const int count = sd_listen_fds(1);
    if (count > 0)
    {
        return count == 1 ? SD_LISTEN_FDS_START
                          : complain("systemd", "hands over several sockets");
    }
    const auto found = resolve(address);
    if (!found)
    {
        return failed;
    }
    const int socket = ::socket(found->ai_family,
                                SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const int yes = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
    if (bind(socket, found->ai_addr, found->ai_addrlen) < 0 ||
        listen(socket, SOMAXCONN) < 0)
    {
        complain(address, std::strerror(errno));
        close(socket);
        return failed;
    }
    return socket;
}

std::string addressOf(int socket)
{
    sockaddr_storage address{};
    socklen_t size = sizeof(address);
    auto* any = reinterpret_cast<sockaddr*>(&address);
    char host[NI_MAXHOST];
    char port[NI_MAXSERV];
    if (getsockname(socket, any, &size) != 0 ||
        getnameinfo(any, size, host, sizeof(host), port, sizeof(port),
                    NI_NUMERICHOST | NI_NUMERICSERV) != 0)
    {
        return "a socket";
    }
    return (address.ss_family == AF_INET6 ? '[' + std::string(host) + ']'
                                          : host) +
           ':' + port;
}

} // namespace morvath::exporter
