// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace morvath::sim
{

// How much of the front of a text has a form; 0 when it has not.

std::size_t uuidLength(std::string_view text);
std::size_t macAddressLength(std::string_view text);
/** Longer than a MAC address, but written alike. */
std::size_t worldWideNameLength(std::string_view text);
std::size_t ipv6Length(std::string_view text);
std::size_t ipv4Length(std::string_view text);

/** An address in the usual spelling; empty when it is none. */
std::string canonicalAddress(int family, std::string_view text);

} // namespace morvath::sim
