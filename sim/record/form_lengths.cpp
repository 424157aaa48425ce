// SPDX-License-Identifier: Apache-2.0
#include "sim/record/form_lengths.hpp"

#include "sim/record/characters.hpp"

#include <arpa/inet.h>

#include <algorithm>
#include <array>

namespace morvath::sim
{

constexpr std::string_view separators = ":-_";
constexpr std::size_t macLength = 17;

namespace
{

std::size_t digitsAt(std::string_view text, std::size_t place)
{
    const auto start = text.begin() + std::min(place, text.size());
    return static_cast<std::size_t>(
        std::find_if_not(start, text.end(), isHexadecimal) - start);
}

/** As many as there are of two digits with the same separator between. */
std::size_t pairsLength(std::string_view text)
{
    std::size_t place = 0;
    while (digitsAt(text, place) == 2)
    {
        place += 2;
        const bool goesOn = place < text.size() && text[place] == text[2] &&
                            separators.find(text[place]) != separators.npos &&
                            digitsAt(text, place + 1) == 2;
        if (!goesOn)
        {
            return place;
        }
        place++;
    }
    return 0;
}

/** A full stop or a colon after an address is none of it. */
std::size_t addressLength(int family, std::string_view text)
{
    const std::string_view allowed =
        family == AF_INET ? "0123456789." : "0123456789abcdefABCDEF.:";
    const std::string_view run =
        text.substr(0, std::min(text.find_first_not_of(allowed), text.size()));
    const bool isMarked =
        family == AF_INET || std::ranges::count(run, ':') >= 2;
    if (!isMarked || run.size() >= INET6_ADDRSTRLEN)
    {
        return 0;
    }
    for (std::size_t length = run.size();
         length > 0 && length + 1 >= run.size(); length--)
    {
        if (!canonicalAddress(family, run.substr(0, length)).empty())
        {
            return length;
        }
    }
    return 0;
}

} // namespace

std::size_t uuidLength(std::string_view text)
{
    std::size_t place = 0;
    for (const std::size_t group : {8U, 4U, 4U, 4U, 12U})
    {
        const bool isSeparated =
            place == 0 || (place < text.size() && text[place] == text[8] &&
                           separators.find(text[place]) != separators.npos);
        place += place == 0 ? 0 : 1;
        if (!isSeparated || digitsAt(text, place) != group)
        {
            return 0;
        }
        place += group;
    }
    return place;
}

std::size_t macAddressLength(std::string_view text)
{
    const std::size_t length = pairsLength(text);
    return length == macLength ? length : 0;
}

std::size_t worldWideNameLength(std::string_view text)
{
    const std::size_t length = pairsLength(text);
    return length > macLength ? length : 0;
}

std::size_t ipv6Length(std::string_view text)
{
    return addressLength(AF_INET6, text);
}

std::size_t ipv4Length(std::string_view text)
{
    return addressLength(AF_INET, text);
}

std::string canonicalAddress(int family, std::string_view text)
{
    std::array<unsigned char, sizeof(in6_addr)> bytes{};
    std::array<char, INET6_ADDRSTRLEN> shown{};
    if (inet_pton(family, std::string(text).c_str(), bytes.data()) != 1)
    {
        return {};
    }
    inet_ntop(family, bytes.data(), shown.data(), shown.size());
    return shown.data();
}

} // namespace morvath::sim
