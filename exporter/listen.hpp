// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace morvath::exporter
{

/**
 * The socket that systemd hands over, or else one for an address such as
 * "127.0.0.1:9795" or "[::1]:9795"; without a host, all addresses. Negative
 * when there can be none, with the reason on standard error.
 */
int listenAt(const std::string& address);

/** Where a socket listens, for people. */
std::string addressOf(int socket);

} // namespace morvath::exporter
