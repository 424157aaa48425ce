// SPDX-License-Identifier: Apache-2.0
#include "sim/record/mask_forms.hpp"

#include "sim/record/characters.hpp"
#include "sim/record/form_lengths.hpp"
#include "sim/record/form_masks.hpp"
#include "sim/record/mask_rules.hpp"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <cctype>

namespace morvath::sim
{

namespace
{

std::string digitsOf(std::string_view text)
{
    std::string digits;
    for (const char character : text)
    {
        if (isHexadecimal(character))
        {
            digits += static_cast<char>(std::tolower(character));
        }
    }
    return digits;
}

std::string ipv6Key(std::string_view text)
{
    return canonicalAddress(AF_INET6, text);
}

std::string ipv4Key(std::string_view text)
{
    return canonicalAddress(AF_INET, text);
}

std::string wholeText(std::string_view text)
{
    return std::string(text);
}

bool isUniform(const std::string& digits)
{
    return digits.find_first_not_of(digits[0]) == digits.npos;
}

bool isGroupMac(const std::string& digits)
{
    constexpr std::string_view odd = "13579bdf";
    return isUniform(digits) || odd.find(digits[1]) != odd.npos;
}

bool isCommonIpv6(const std::string& text)
{
    return text == "::" || text == "::1" ||
           (text.starts_with("ff") && text.find(':') == 4);
}

bool isCommonIpv4(const std::string& text)
{
    in_addr bytes{};
    inet_pton(AF_INET, text.c_str(), &bytes);
    const std::uint32_t number = ntohl(bytes.s_addr);
    const std::uint32_t first = number >> 24;
    const std::uint32_t hostPart = ~number;
    const bool isNetmask = first == 255 && (hostPart & (hostPart + 1)) == 0;
    return number == 0 || first == IN_LOOPBACKNET || IN_MULTICAST(number) ||
           isNetmask;
}

constexpr std::array rules{
    FormRule{Form::uuid, uuidLength, digitsOf, isUniform, uuidMask, withDigits},
    FormRule{Form::mac, macAddressLength, digitsOf, isGroupMac, macMask,
             withDigits},
    FormRule{Form::worldWideName, worldWideNameLength, digitsOf, isUniform,
             worldWideNameMask, withDigits},
    FormRule{Form::ipv6, ipv6Length, ipv6Key, isCommonIpv6, ipv6Mask, asItIs},
    FormRule{Form::ipv4, ipv4Length, ipv4Key, isCommonIpv4, ipv4Mask, asItIs},
    FormRule{Form::none, nullptr, wholeText,
             [](const std::string& text) { return isPlaceholder(text); },
             serialMask, asItIs},
};

} // namespace

const FormRule& formRule(Form form)
{
    return rules.at(static_cast<std::size_t>(form));
}

FoundForm formAt(std::string_view text, std::size_t place)
{
    const char before = place == 0 ? ' ' : text[place - 1];
    if (isAlphanumeric(before) || before == '.')
    {
        return {};
    }
    const std::string_view rest = text.substr(place);
    for (const FormRule& rule : rules)
    {
        const std::size_t length =
            rule.length == nullptr ? 0 : rule.length(rest);
        const bool ends =
            length == rest.size() || !isAlphanumeric(rest[length]);
        if (length > 0 && ends)
        {
            return {rule.form, length};
        }
    }
    return {};
}

} // namespace morvath::sim
