// SPDX-License-Identifier: Apache-2.0
#include "sim/record/form_masks.hpp"

#include "sim/record/characters.hpp"
#include "sim/record/form_lengths.hpp"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <stdexcept>

namespace morvath::sim
{

namespace
{

std::string printed(const char* format, auto... values)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), format, values...);
    return text.data();
}

struct Network
{
    std::uint32_t base;
    std::uint32_t size;
};

/** Set aside for documents and, the last one, for measurements. */
constexpr std::array networks{
    Network{0xc0000200, 1U << 8}, Network{0xc6336400, 1U << 8},
    Network{0xcb007100, 1U << 8}, Network{0xc6120000, 1U << 17}};

/** The characters that may stand where another one stood. */
std::string_view alphabetOf(char character, bool isHex)
{
    const auto byte = static_cast<unsigned char>(character);
    if (std::isdigit(byte) != 0)
    {
        return "0123456789";
    }
    const std::string_view letters = std::isupper(byte) != 0
                                         ? "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                         : "abcdefghijklmnopqrstuvwxyz";
    const bool isLetter = std::isalpha(byte) != 0 || byte >= 0x80;
    return isLetter ? letters.substr(0, isHex ? 6 : letters.size()) : "";
}

} // namespace

std::string uuidMask(std::uint64_t number, const std::string& key)
{
    const char version = key[12] >= '1' && key[12] <= '8' ? key[12] : '4';
    return printed("%012x%c0008000%012llx", 0U, version,
                   static_cast<unsigned long long>(number + 1));
}

std::string macMask(std::uint64_t number, const std::string&)
{
    return printed("020000%06llx", static_cast<unsigned long long>(number + 1));
}

std::string worldWideNameMask(std::uint64_t number, const std::string& key)
{
    return printed("02%0*llx", static_cast<int>(key.size() - 2),
                   static_cast<unsigned long long>(number + 1));
}

std::string ipv6Mask(std::uint64_t number, const std::string&)
{
    const std::uint64_t host = number + 1;
    return canonicalAddress(AF_INET6,
                            printed("2001:db8::%x:%x",
                                    static_cast<unsigned>(host >> 16 & 0xffff),
                                    static_cast<unsigned>(host & 0xffff)));
}

std::string ipv4Mask(std::uint64_t number, const std::string&)
{
    for (const Network& network : networks)
    {
        // Neither the network itself nor its broadcast.
        const std::uint64_t hosts = network.size - 2;
        if (number < hosts)
        {
            in_addr bytes{
                htonl(network.base + 1 + static_cast<std::uint32_t>(number))};
            std::array<char, INET_ADDRSTRLEN> text{};
            return inet_ntop(AF_INET, &bytes, text.data(), text.size());
        }
        number -= hosts;
    }
    throw std::runtime_error("there are more IPv4 addresses than masks");
}

std::string withDigits(const std::string& mask, std::string_view original)
{
    const bool isUpper = std::ranges::any_of(
        original, [](unsigned char digit) { return std::isupper(digit) != 0; });
    std::string text(original);
    auto digit = mask.begin();
    for (char& character : text)
    {
        if (isHexadecimal(character))
        {
            character =
                static_cast<char>(isUpper ? std::toupper(*digit) : *digit);
            ++digit;
        }
    }
    return text;
}

std::string asItIs(const std::string& mask, std::string_view)
{
    return mask;
}

std::string serialMask(std::uint64_t number, const std::string& key)
{
    const std::size_t prefix = key.starts_with("0x") ? 2 : 0;
    const bool isHex = std::ranges::all_of(key.substr(prefix), isHexadecimal);
    std::string mask = key;
    for (auto place = mask.rbegin();
         place != mask.rend() - static_cast<std::ptrdiff_t>(prefix); ++place)
    {
        const std::string_view alphabet = alphabetOf(*place, isHex);
        if (!alphabet.empty())
        {
            *place = alphabet[number % alphabet.size()];
            number /= alphabet.size();
        }
    }
    return number == 0 ? mask : mask + std::to_string(number);
}

} // namespace morvath::sim
