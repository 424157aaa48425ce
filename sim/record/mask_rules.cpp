// SPDX-License-Identifier: Apache-2.0
#include "sim/record/mask_rules.hpp"

#include <algorithm>
#include <array>
#include <cctype>

namespace morvath::sim
{

constexpr bool end = true;
constexpr bool whole = false;

constexpr std::array nameRules{
    NameRule{"serialnumber", end, Treatment::everywhere},
    NameRule{"serial", end, Treatment::everywhere},
    NameRule{"assettag", end, Treatment::everywhere},
    NameRule{"uniqueidentifier", end, Treatment::everywhere},
    NameRule{"uuid", end, Treatment::everywhere, Form::uuid},
    NameRule{"guid", end, Treatment::everywhere, Form::uuid},
    NameRule{"wwn", end, Treatment::everywhere},
    NameRule{"wwnn", end, Treatment::everywhere},
    NameRule{"wwpn", end, Treatment::everywhere},
    NameRule{"worldwidename", end, Treatment::everywhere},
    NameRule{"macaddress", end, Treatment::everywhere, Form::mac},
    NameRule{"hostname", end, Treatment::asWord},
    NameRule{"domainname", end, Treatment::asWord},
    NameRule{"fqdn", end, Treatment::asWord},
    NameRule{"ntpservers", end, Treatment::asHostName},
    NameRule{"ipaddress", end, Treatment::asHostName},
    NameRule{"address", whole, Treatment::asHostName},
    NameRule{"gateway", end, Treatment::asHostName},
    // Four numbers of a version are no address.
    NameRule{"version", end, Treatment::kept},
    // Identifying texts of a RAID controller.
    NameRule{"text84", whole, Treatment::everywhere},
    NameRule{"text132", whole, Treatment::kept},
    NameRule{"text164", whole, Treatment::everywhere},
};

constexpr std::array<std::string_view, 11> placeholders{
    "defaultstring",  "localhost",    "na",   "none",    "notavailable",
    "notset",         "notspecified", "null", "unknown", "unspecified",
    "tobefilledbyoem"};

namespace
{

std::string folded(std::string_view name)
{
    std::string result;
    for (const unsigned char character : name)
    {
        if (std::isalnum(character) != 0 || character >= 0x80)
        {
            result += static_cast<char>(std::tolower(character));
        }
    }
    return result;
}

} // namespace

const NameRule* ruleFor(std::string_view name)
{
    const std::string text = folded(name);
    const auto fits = [&](const NameRule& rule) {
        return rule.isOnlyTheEnd ? text.ends_with(rule.name)
                                 : text == rule.name;
    };
    const auto found = std::ranges::find_if(nameRules, fits);
    return found == nameRules.end() ? nullptr : &*found;
}

bool isPlaceholder(std::string_view text)
{
    const std::string word = folded(text);
    const bool isFiller =
        word.empty() ||
        (std::string_view("0fx").find(word[0]) != std::string_view::npos &&
         word.find_first_not_of(word[0]) == word.npos);
    return isFiller ||
           std::ranges::find(placeholders, word) != placeholders.end();
}

bool looksLikeHostName(std::string_view text)
{
    const auto mayBe = [](unsigned char character) {
        return std::isalnum(character) != 0 || character == '.' ||
               character == '-';
    };
    const auto isLetter = [](unsigned char character) {
        return std::isalpha(character) != 0;
    };
    return std::ranges::all_of(text, mayBe) &&
           std::ranges::any_of(text, isLetter) && !text.starts_with("0x");
}

} // namespace morvath::sim
