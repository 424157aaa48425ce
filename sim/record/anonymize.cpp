// SPDX-License-Identifier: Apache-2.0
#include "sim/record/anonymize.hpp"

#include <arpa/inet.h>
#include <regex.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <functional>
#include <map>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace morvath::sim
{

namespace
{

using Json = nlohmann::ordered_json;

// What is shorter stands in other texts by chance; from the second length on
// it may be a part of a word.
constexpr std::size_t shortest = 4;
constexpr std::size_t unmistakable = 8;

/** Where a secret is looked for. */
enum Scope : std::size_t
{
    /** In all texts, whatever stands between its letters and digits. */
    everywhere,
    /** In all texts, as it is spelt: addresses. */
    asSpelt,
    /** Likewise, but as a word and not in paths: names of hosts. */
    asWord,
    /** Nowhere: it only looks like a secret. */
    nowhere,
    /** What a text with no rule for its name has. */
    unruled,
};

/** A POSIX expression for texts in small letters. */
class Pattern
{
  public:
    Pattern(Scope scope, const char* text) : scope(scope)
    {
        if (regcomp(&compiled, text, REG_EXTENDED) != 0)
        {
            throw std::bad_alloc();
        }
    }

    Pattern(const Pattern&) = delete;
    Pattern& operator=(const Pattern&) = delete;

    ~Pattern() { regfree(&compiled); }

    bool matches(const std::string& text) const
    {
        return regexec(&compiled, text.c_str(), 0, nullptr, 0) == 0;
    }

    /** Calls the action with each match of the second group. */
    void forEach(const std::string& text, const auto& action) const
    {
        std::array<regmatch_t, 3> groups{};
        const auto end = static_cast<regoff_t>(text.size());
        for (regoff_t place = 0;; place = groups[2].rm_eo)
        {
            groups[0] = {place, end};
            if (regexec(&compiled, text.c_str(), groups.size(), groups.data(),
                        REG_STARTEND | (place == 0 ? 0 : REG_NOTBOL)) != 0)
            {
                return;
            }
            action(text.substr(
                static_cast<std::size_t>(groups[2].rm_so),
                static_cast<std::size_t>(groups[2].rm_eo - groups[2].rm_so)));
        }
    }

    const Scope scope;

  private:
    regex_t compiled{};
};

/** The ends of names of properties: letters and digits, in small letters. */
const std::array<Pattern, 4>& namePatterns()
{
    static const std::array<Pattern, 4> patterns{{
        // Four numbers of a version are not an address.
        {nowhere, "(version|text132)$"},
        {everywhere, "(serial(number)?|servicetag|assettag|ppid|uuid|guid|"
                     "uniqueidentifier|ww[np]?n|worldwidename|macaddress|"
                     "text84|text164)$"},
        {asWord, "(hostname|domainname|fqdn)$"},
        // Addresses, names of hosts or something else.
        {asSpelt, "(ntpservers|address|gateway)$"},
    }};
    return patterns;
}

#define APART(contents) \
    "(^|[^[:alnum:].])(" contents ")($|[^[:alnum:].]|\\.($|[^[:alnum:]]))"
#define HEX "[0-9a-f]"
#define IPV4 "[0-9]{1,3}(\\.[0-9]{1,3}){3}"

/** What is a secret in any text, as the second group. */
const std::array<Pattern, 7>& formPatterns()
{
    static const std::array<Pattern, 7> patterns{{
        {everywhere, APART(HEX "{8}([-_:]" HEX "{4}){3}[-_:]" HEX "{12}")},
        {everywhere, APART(HEX "{2}([-_:]" HEX "{2}){5,}")},
        {everywhere, APART(HEX "{4}\\." HEX "{4}\\." HEX "{4}")},
        {everywhere,
         APART("(0x|eui\\.|naa\\.)?(" HEX "{12}|" HEX "{16}|" HEX "{32})")},
        {asSpelt, APART(IPV4)},
        {asSpelt, APART("(" HEX "{0,4}:){2,7}(" HEX "{1,4}|" IPV4 ")?")},
        // In a URL.
        {asWord, "://([^/?#@ ]*@)?([0-9.-]*[a-z][a-z0-9.-]*)"},
    }};
    return patterns;
}

bool isLetter(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return byte >= 0x80 || std::isalnum(byte) != 0;
}

bool isDigit(char character) { return character >= '0' && character <= '9'; }

std::string inSmallLetters(std::string text)
{
    std::ranges::transform(text, text.begin(), [](unsigned char character) {
        return static_cast<char>(std::tolower(character));
    });
    return text;
}

/** The letters and digits alone. */
std::string lettersOf(std::string text)
{
    std::erase_if(text, [](char character) { return !isLetter(character); });
    return text;
}

/** A name as a segment of an object path, as the platform's binding does it. */
std::string encoded(std::string_view name)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string segment;
    for (const unsigned char byte : name)
    {
        if (!segment.empty() && std::isalnum(byte) != 0)
        {
            segment += static_cast<char>(byte);
        }
        else
        {
            segment += {'_', digits[byte >> 4], digits[byte & 0xf]};
        }
    }
    return segment;
}

/** The reverse, as far as there are codes. */
std::string decoded(const std::string& path)
{
    std::string text;
    for (std::size_t place = 0; place < path.size(); ++place)
    {
        const auto code = path.substr(place, sizeof("_00") - 1);
        if (code.size() == 3 && code[0] == '_' && std::isxdigit(code[1]) &&
            std::isxdigit(code[2]))
        {
            text += static_cast<char>(std::stoi(code.substr(1), nullptr, 16));
            place += 2;
        }
        else
        {
            text += path[place];
        }
    }
    return text;
}

/** Whether it is an address of either family that many machines have. */
bool isCommonAddress(const std::string& text)
{
    in6_addr six{};
    if (inet_pton(AF_INET6, text.c_str(), &six) == 1)
    {
        return IN6_IS_ADDR_UNSPECIFIED(&six) || IN6_IS_ADDR_LOOPBACK(&six) ||
               IN6_IS_ADDR_MULTICAST(&six);
    }
    in_addr four{};
    inet_pton(AF_INET, text.c_str(), &four);
    const auto number = ntohl(four.s_addr);
    const auto first = number >> 24;
    const auto hostPart = ~number;
    const auto isNetmask = first == 255 && (hostPart & (hostPart + 1)) == 0;
    return number == 0 || first == IN_LOOPBACKNET || IN_MULTICAST(number) ||
           isNetmask;
}

bool isAddress(const std::string& text)
{
    in6_addr bytes{};
    return inet_pton(AF_INET, text.c_str(), &bytes) == 1 ||
           inet_pton(AF_INET6, text.c_str(), &bytes) == 1;
}

/** The masks of a shape by number; an empty one when there are no more. */
std::string maskOf(std::string text, Scope scope, uint64_t number)
{
    const auto original = text;
    const auto isHex =
        lettersOf(text).find_first_not_of("0123456789abcdef") == text.npos;
    for (auto place = text.size(); place-- > 0;)
    {
        std::string_view alphabet = "abcdefghijklmnopqrstuvwxyz";
        alphabet = alphabet.substr(0, isHex ? 6 : alphabet.size());
        if (isDigit(text[place]) && scope == asSpelt)
        {
            // Numbers of an address do not begin with 0 and end at 255.
            const auto isFirst = place == 0 || !isDigit(original[place - 1]);
            const auto isHundred = isDigit(original.c_str()[place + 1]) &&
                                   isDigit(original.c_str()[place + 2]);
            alphabet = isFirst && isHundred ? "1" : "123456789";
        }
        else if (isDigit(text[place]))
        {
            alphabet = "0123456789";
        }
        if (isLetter(text[place]))
        {
            text[place] = alphabet[number % alphabet.size()];
            number /= alphabet.size();
        }
    }
    return number == 0 ? text : "";
}

/** A MAC address or a worldwide name, grouped as it is written elsewhere. */
std::string grouped(const std::string& digits, std::size_t length, char mark)
{
    std::string text;
    for (std::size_t place = 0; place < digits.size(); ++place)
    {
        text.append(place > 0 && place % length == 0 ? 1 : 0, mark);
        text += digits[place];
    }
    return text;
}

/** How a secret is spelt in one place or another; the same for its mask. */
std::vector<std::string> spellingsOf(const std::string& text, Scope scope)
{
    std::vector<std::string> spellings{text};
    if (scope == asWord)
    {
        return spellings;
    }
    spellings.push_back(encoded(text));
    spellings.push_back(text);
    std::ranges::replace_if(spellings.back(), std::not_fn(isLetter), '_');
    const auto letters = lettersOf(text);
    if (scope == everywhere)
    {
        spellings.push_back(letters);
    }
    if (scope == everywhere && (letters.size() == 12 || letters.size() == 16))
    {
        spellings.push_back(grouped(letters, 2, ':'));
        spellings.push_back(grouped(letters, 2, '-'));
        spellings.push_back(grouped(letters, 2, '_'));
        spellings.push_back(grouped(letters, 4, '.'));
    }
    return spellings;
}

struct Replacement
{
    /** Of the same length. */
    std::string mask;
    Scope scope;
};

using Replacements = std::map<std::string, Replacement, std::less<>>;

/** The longest one that a text begins with and that fits there. */
const Replacements::value_type* longestPrefix(const Replacements& replacements,
                                              std::string_view text,
                                              const auto& fits)
{
    while (!text.empty())
    {
        auto found = replacements.upper_bound(text);
        if (found == replacements.begin())
        {
            return nullptr;
        }
        --found;
        const auto [end, other] = std::ranges::mismatch(text, found->first);
        const auto common = static_cast<std::size_t>(end - text.begin());
        if (other != found->first.end())
        {
            text = text.substr(0, common);
        }
        else if (fits(*found))
        {
            return &*found;
        }
        else
        {
            text = text.substr(0, common - 1);
        }
    }
    return nullptr;
}

/** Collects the secrets of a scenario, and then masks them. */
class Anonymizer
{
  public:
    void anonymize(Json& scenario)
    {
        walk(scenario, unruled);
        assignMasks();
        isMasking = true;
        walk(scenario, unruled);
    }

  private:
    Scope ruleFor(const std::string& name)
    {
        const auto [known, isNew] = rules.emplace(name, unruled);
        if (isNew)
        {
            const auto letters = lettersOf(inSmallLetters(name));
            for (const auto& pattern : namePatterns())
            {
                if (known->second == unruled && pattern.matches(letters))
                {
                    known->second = pattern.scope;
                }
            }
        }
        return known->second;
    }

    /** @param[in] isValue  whether keys belong to a dictionary of the bus */
    void walk(Json& json, Scope rule, bool isValue = false)
    {
        if (json.is_string())
        {
            changeText(json.get_ref<std::string&>(), rule);
        }
        else if (json.is_array())
        {
            for (auto& element : json)
            {
                walk(element, rule, isValue);
            }
        }
        else if (json.is_object() && json.contains("type") &&
                 json.contains("value"))
        {
            json["type"] == "ay" ? changeBytes(json["value"], rule)
                                 : walk(json["value"], rule, true);
        }
        else if (json.is_object())
        {
            walkMembers(json, rule, isValue);
        }
    }

    void walkMembers(Json& json, Scope rule, bool isValue)
    {
        if (!isValue)
        {
            // Of these bytes of a record nobody knows what they tell.
            json.erase("raw");
        }
        Json::object_t::Container changed;
        for (const auto& [name, member] : json.items())
        {
            auto key = name;
            const auto own = ruleFor(name);
            walk(member, isValue && own == unruled ? rule : own, isValue);
            if (isValue)
            {
                changeText(key, unruled);
            }
            changed.emplace_back(std::move(key), std::move(member));
        }
        Json::object_t::Container& members = json.get_ref<Json::object_t&>();
        members = std::move(changed);
    }

    /** Vital product data often comes as the bytes of a text. */
    void changeBytes(Json& bytes, Scope rule)
    {
        std::string text;
        for (const auto& byte : bytes)
        {
            text += static_cast<char>(byte.get<unsigned char>());
        }
        text.resize(std::min(text.find('\0'), text.size()));
        if (std::ranges::all_of(text, [](unsigned char byte) {
                return std::isprint(byte) != 0;
            }))
        {
            changeText(text, rule);
            std::ranges::copy(text, bytes.begin());
        }
    }

    void changeText(std::string& text, Scope rule)
    {
        if (isMasking)
        {
            mask(text, rule < nowhere);
        }
        else if (rule != nowhere)
        {
            collect(inSmallLetters(text), rule);
            if (text.starts_with('/'))
            {
                collect(inSmallLetters(decoded(text)), rule);
            }
        }
    }

    void collect(std::string text, Scope rule)
    {
        const auto start = std::min(text.find_first_not_of(' '), text.size());
        text = text.substr(start, text.find_last_not_of(' ') + 1 - start);
        auto isKnown = false;
        for (const auto& form : formPatterns())
        {
            form.forEach(text, [&](const std::string& match) {
                isKnown |= match.size() == text.size();
                noteForm(match, form.scope);
            });
        }
        if (isKnown || rule == unruled)
        {
            return;
        }
        // "0x50" of an address is not the name of a host.
        static const Pattern hostName(asWord, "^[0-9.-]*[a-wyz][a-z0-9.-]*$");
        if (rule != asSpelt || hostName.matches(text))
        {
            note(text, rule == asSpelt ? asWord : rule);
        }
    }

    void noteForm(std::string text, Scope scope)
    {
        if (scope == asSpelt)
        {
            // A colon after an address is not a part of it.
            text.resize(text.size() - (isAddress(text) ? 0 : 1));
            if (isAddress(text) && !isCommonAddress(text))
            {
                note(text, scope);
            }
            return;
        }
        const auto letters =
            lettersOf(text.substr(text.find('.') == 3 ? 4 : 0));
        const auto hasPairs =
            text[2] == '-' || text[2] == ':' || text[2] == '_';
        const auto isGroupAddress =
            hasPairs && letters.size() == 12 &&
            std::string_view("13579bdf").contains(letters[1]);
        const auto isNumber = std::ranges::all_of(text, [](char character) {
            return isDigit(character) || character == '.';
        });
        const auto isWord = std::ranges::none_of(text, isDigit);
        const auto isUniform =
            letters.find_first_not_of(letters[0]) == letters.npos;
        if (scope == asWord ||
            !(isGroupAddress || isNumber || isWord || isUniform))
        {
            note(text, scope);
        }
    }

    void note(std::string_view text, Scope scope)
    {
        for (const std::string_view mark : {"0x", "eui.", "naa."})
        {
            text.remove_prefix(text.starts_with(mark) ? mark.size() : 0);
        }
        static const Pattern placeholder(
            nowhere, "^(0*|f*|x*|defaultstring|localhost|na|none|null|"
                     "not(available|set|specified)|unknown|unspecified|"
                     "tobefilledbyoem)$");
        const std::string spelling(text);
        const auto letters = lettersOf(spelling);
        if (!placeholder.matches(letters))
        {
            secrets[scope].emplace(scope == everywhere ? letters : spelling,
                                   "");
            spellings.emplace(spelling, scope);
        }
    }

    /** Different masks for different secrets, and none that is a secret. */
    void assignMasks()
    {
        struct Shape
        {
            uint64_t next = 1;
            bool isExhausted = false;
        };
        for (const auto scope : {everywhere, asSpelt, asWord})
        {
            std::map<std::string, Shape> shapes;
            for (auto& [secret, mask] : secrets[scope])
            {
                auto& shape = shapes[maskOf(secret, scope, 0)];
                do
                {
                    mask = maskOf(secret, scope, shape.next++);
                    if (mask.empty())
                    {
                        if (shape.isExhausted)
                        {
                            throw std::runtime_error("there are no masks left");
                        }
                        // Then one stands for the other.
                        shape = {0, true};
                    }
                } while (mask.empty() ||
                         secrets[scope].contains(mask) != shape.isExhausted ||
                         (scope == asSpelt && isCommonAddress(mask)));
            }
        }
        for (const auto& [spelling, scope] : spellings)
        {
            const auto key =
                scope == everywhere ? lettersOf(spelling) : spelling;
            auto next = secrets[scope][key].begin();
            auto mask = spelling;
            for (auto& character : mask)
            {
                const auto counts = scope != everywhere || isLetter(character);
                character = counts ? *next++ : character;
            }
            const auto masks = spellingsOf(mask, scope);
            const auto originals = spellingsOf(spelling, scope);
            for (std::size_t index = 0; index < masks.size(); ++index)
            {
                replacements.emplace(originals[index],
                                     Replacement{masks[index], scope});
            }
        }
    }

    void mask(std::string& text, bool isNamed) const
    {
        const auto original = inSmallLetters(text);
        const std::string_view whole = original;
        const auto mayBeHost = !whole.starts_with('/') &&
                               !whole.starts_with("xyz.openbmc_project.");
        for (std::size_t place = 0; place < whole.size();)
        {
            const auto before = whole.substr(0, place);
            const auto fits = [&](const Replacements::value_type& entry) {
                const auto& secret = entry.first;
                const auto scope = entry.second.scope;
                const auto after = whole.substr(place + secret.size());
                const auto joins = [&](char character) {
                    return isLetter(character) ||
                           (scope == asWord && character == '_');
                };
                const auto isApart =
                    (before.empty() || !joins(before.back())) &&
                    (after.empty() || !joins(after.front()));
                if (scope == asWord && !mayBeHost)
                {
                    return false;
                }
                return secret.size() >= shortest
                           ? isApart || (scope == everywhere &&
                                         secret.size() >= unmistakable)
                           : before.ends_with("://") ||
                                 (isNamed &&
                                  lettersOf(secret) == lettersOf(original));
            };
            const auto* found =
                longestPrefix(replacements, whole.substr(place), fits);
            if (!found)
            {
                ++place;
                continue;
            }
            for (const auto letter : found->second.mask)
            {
                const auto isCapital = text[place] != whole[place];
                text[place++] = isCapital
                                    ? static_cast<char>(std::toupper(letter))
                                    : letter;
            }
        }
    }

    std::unordered_map<std::string, Scope> rules;
    /** The secrets as they stand in the scenario. */
    std::map<std::string, Scope> spellings;
    /** Masks by secrets; of what is looked for everywhere the letters alone. */
    std::array<std::map<std::string, std::string>, nowhere> secrets;
    Replacements replacements;
    bool isMasking = false;
};

} // namespace

void anonymize(Json& scenario)
{
    Anonymizer().anonymize(scenario);
    std::ranges::sort(scenario["objects"].get_ref<Json::array_t&>(), {},
                      [](const Json& object) {
                          return object["path"].get_ref<const std::string&>();
                      });
}

} // namespace morvath::sim
