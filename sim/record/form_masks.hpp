// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace morvath::sim
{

// The masks of a key by number, all different, as long as there are any.

std::string uuidMask(std::uint64_t number, const std::string& key);
std::string macMask(std::uint64_t number, const std::string& key);
std::string worldWideNameMask(std::uint64_t number, const std::string& key);
std::string ipv6Mask(std::uint64_t number, const std::string& key);
/** @throws std::runtime_error  there are no more */
std::string ipv4Mask(std::uint64_t number, const std::string& key);
/** Counts in the letters and the digits of the key, with more if need be. */
std::string serialMask(std::uint64_t number, const std::string& key);

// A mask as the original is spelt.

/** With its separators and in the case of its letters. */
std::string withDigits(const std::string& mask, std::string_view original);
std::string asItIs(const std::string& mask, std::string_view original);

} // namespace morvath::sim
