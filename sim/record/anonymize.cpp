// SPDX-License-Identifier: Apache-2.0
#include "sim/document.hpp"
#include "sim/record/parts.hpp"

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
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace morvath::sim
{
namespace
{

// What is shorter stands in other texts by chance; from the second length on
// it may be a part of a word.
constexpr std::size_t shortest = 4;
constexpr std::size_t unmistakable = 8;

enum class Secrecy
{
    unruled,
    /** It only looks like a secret. */
    harmless,
    /** Serial numbers, MAC addresses and the like. */
    identifier,
    host,
    /** Of the internet; under such a name there may be a host, too. */
    address,
};

/** A kind of secret and an expression for texts in small letters. */
struct Form
{
    Form(Secrecy secrecy, const char* expression) : secrecy(secrecy)
    {
        if (regcomp(&pattern, expression, REG_EXTENDED) != 0)
        {
            throw std::bad_alloc();
        }
    }

    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    ~Form() { regfree(&pattern); }

    bool matches(const std::string& text) const
    {
        return regexec(&pattern, text.c_str(), 0, nullptr, 0) == 0;
    }

    /** Calls the action with each match of the second group. */
    void forEach(const std::string& text, const auto& action) const
    {
        std::array<regmatch_t, 3> groups;
        for (const auto* rest = text.c_str();
             regexec(&pattern, rest, groups.size(), groups.data(),
                     rest == text.c_str() ? 0 : REG_NOTBOL) == 0;
             rest += groups[2].rm_eo)
        {
            action(std::string(rest + groups[2].rm_so, rest + groups[2].rm_eo));
        }
    }

    Secrecy secrecy;
    regex_t pattern{};
};

#define APART(contents) \
    "(^|[^[:alnum:].])(" contents ")($|[^[:alnum:].]|\\.($|[^[:alnum:]]))"
#define HEX "[0-9a-f]"
#define IPV4 "[0-9]{1,3}(\\.[0-9]{1,3}){3}"

struct Forms
{
    /** The ends of names of properties. */
    const std::array<Form, 4> names{{
        // Four numbers of a version are not an address.
        {Secrecy::harmless, "(version|text132)$"},
        {Secrecy::identifier,
         "(serial(number)?|servicetag|assettag|ppid|uuid|guid|"
         "uniqueidentifier|ww[np]?n|worldwidename|macaddress|"
         "text84|text164)$"},
        {Secrecy::host, "(hostname|domainname|fqdn)$"},
        {Secrecy::address, "(ntpservers|address|gateway)$"},
    }};

    /** What is a secret in any text, as the second group. */
    const std::array<Form, 3> texts{{
        {Secrecy::identifier,
         APART(HEX "{8}([-_:]" HEX "{4}){3}[-_:]" HEX "{12}|" HEX
                   "{2}([-_:]" HEX "{2}){5,}|" HEX "{4}\\." HEX "{4}\\." HEX
                   "{4}|"
                   "(0x|eui\\.|naa\\.)?"
                   "(" HEX "{12}|" HEX "{16}|" HEX "{32})")},
        {Secrecy::host, "://([^/?#@ ]*@)?([0-9.-]*[a-z][a-z0-9.-]*)"},
        {Secrecy::address,
         APART(IPV4 "|(" HEX "{0,4}:){2,7}(" HEX "{1,4}|" IPV4 ")?")},
    }};

    /** "0x50" of an address is not the name of a host. */
    const Form hostName{Secrecy::host, "^[0-9.-]*[a-wyz][a-z0-9.-]*$"};

    const Form placeholder{Secrecy::harmless,
                           "^(0*|f*|x*|defaultstring|localhost|na|none|null|"
                           "not(available|set|specified)|unknown|unspecified|"
                           "tobefilledbyoem)$"};
};

bool isLetter(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return byte >= 0x80 || std::isalnum(byte) != 0;
}

bool isDigit(char character) { return character >= '0' && character <= '9'; }

/** Whether a character is written as "_3a" there, as in object paths. */
bool isCode(std::string_view text, std::size_t place)
{
    const auto code = text.substr(place, sizeof("_3a") - 1);
    return code.size() == 3 && code[0] == '_' &&
           code.find_first_not_of("0123456789abcdefABCDEF", 1) == code.npos;
}

/** The letters and digits alone. */
std::string lettersOf(std::string text)
{
    std::erase_if(text, std::not_fn(isLetter));
    return text;
}

/** A text in small letters. */
struct View
{
    View(const std::string& whole, bool isPath)
    {
        std::size_t word = 0;
        for (std::size_t place = 0; place < whole.size(); ++place)
        {
            auto character = whole[place];
            const auto start = place;
            if (isPath && isCode(whole, place))
            {
                const auto code = whole.substr(place + 1, 2);
                character = static_cast<char>(std::stoi(code, nullptr, 16));
                place += code.size();
            }
            text += static_cast<char>(
                std::tolower(static_cast<unsigned char>(character)));
            if (isLetter(character))
            {
                letters += text.back();
                places.push_back(start);
                words.push_back(word);
            }
            else
            {
                ++word;
            }
        }
        words.push_back(word + 1);
    }

    std::string text{};
    std::string letters{};
    // Of each letter, and the last also of the end.
    std::vector<std::size_t> words{};
    std::vector<std::size_t> places{};
};

/** Puts a small letter where there may be a capital one, or a code. */
void putLetter(std::string& text, std::size_t place, char letter)
{
    if (text[place] == '_')
    {
        constexpr std::string_view digits = "0123456789abcdef";
        const auto byte = static_cast<unsigned char>(letter);
        text[place + 1] = digits[byte / 16];
        text[place + 2] = digits[byte % 16];
        return;
    }
    const auto isCapital =
        std::isupper(static_cast<unsigned char>(text[place])) != 0;
    text[place] = isCapital ? static_cast<char>(std::toupper(letter)) : letter;
}

/** Whether it is an address, and not one that many machines have. */
bool isTellingAddress(const std::string& text)
{
    in6_addr six{};
    if (inet_pton(AF_INET6, text.c_str(), &six) == 1)
    {
        return !IN6_IS_ADDR_UNSPECIFIED(&six) && !IN6_IS_ADDR_LOOPBACK(&six) &&
               !IN6_IS_ADDR_MULTICAST(&six);
    }
    in_addr four{};
    const auto isAddress = inet_pton(AF_INET, text.c_str(), &four) == 1;
    const auto number = ntohl(four.s_addr);
    const auto first = number >> 24;
    const auto hostPart = ~number;
    const auto isNetmask = first == 255 && (hostPart & (hostPart + 1)) == 0;
    return isAddress && number != 0 && first != IN_LOOPBACKNET &&
           !IN_MULTICAST(number) && !isNetmask;
}

/** Whether it is the number of one machine, and not just formed like one. */
bool isTellingNumber(const std::string& text)
{
    const auto letters = lettersOf(text);
    const auto isGroupAddress =
        !isLetter(text[2]) && letters.size() == 12 &&
        std::string_view("13579bdf").contains(letters[1]);
    const auto isNumber = text.find_first_not_of("0123456789.") == text.npos;
    const auto isUniform =
        letters.find_first_not_of(letters[0]) == letters.npos;
    return !isGroupAddress && !isNumber && !isUniform &&
           std::ranges::any_of(text, isDigit);
}

/** The masks of a shape by number; an empty one when there are no more. */
std::string maskOf(const std::string& secret, Secrecy secrecy, uint64_t number)
{
    std::string mask;
    for (auto place = secret.size(); place-- > 0;)
    {
        std::string_view alphabet = "abcdef";
        if (isDigit(secret[place]) && secrecy == Secrecy::address)
        {
            // Numbers of an address do not begin with 0 and end at 255.
            const auto isHundred =
                (place == 0 || !isDigit(secret[place - 1])) &&
                isDigit(secret.c_str()[place + 1]) &&
                isDigit(secret.c_str()[place + 2]);
            alphabet = isHundred ? "1" : "123456789";
        }
        else if (isDigit(secret[place]))
        {
            alphabet = "0123456789";
        }
        if (isLetter(secret[place]))
        {
            mask += alphabet[number % alphabet.size()];
            number /= alphabet.size();
        }
    }
    std::ranges::reverse(mask);
    return number == 0 ? mask : "";
}

/** Collects the secrets of a scenario, and then masks them. */
class Anonymizer
{
  public:
    void anonymize(Json& scenario)
    {
        walk(scenario, Secrecy::unruled);
        assignMasks();
        isMasking = true;
        walk(scenario, Secrecy::unruled);
    }

  private:
    struct Secret
    {
        Secrecy secrecy;
        std::string spelling;
        std::string mask{};
        /** Whether it is one of another kind, too. */
        bool isMixed = false;
    };

    /** By their letters and digits. */
    using Secrets = std::map<std::string, Secret, std::less<>>;

    /** @param[in] isValue  whether keys belong to a dictionary of the bus */
    void walk(Json& json, Secrecy secrecy, bool isValue = false)
    {
        if (json.is_string())
        {
            change(json.get_ref<std::string&>(), secrecy);
        }
        else if (json.is_array())
        {
            for (auto& element : json)
            {
                walk(element, secrecy, isValue);
            }
        }
        else if (json.contains("type") && json.contains("value"))
        {
            json["type"] == "ay" ? changeBytes(json["value"], secrecy)
                                 : walk(json["value"], secrecy, true);
        }
        else if (json.is_object())
        {
            walkMembers(json, secrecy, isValue);
        }
    }

    void walkMembers(Json& json, Secrecy secrecy, bool isValue)
    {
        Json::object_t changed;
        for (auto& [name, member] : json.get_ref<Json::object_t&>())
        {
            // Of these bytes of a record nobody knows what they tell.
            if (name == "raw" && !isValue && !member.contains("type"))
            {
                continue;
            }
            const auto own = secrecyOf(name);
            walk(member, isValue && own == Secrecy::unruled ? secrecy : own,
                 isValue);
            auto key = name;
            if (isValue)
            {
                change(key, Secrecy::unruled);
            }
            changed.emplace_back(std::move(key), std::move(member));
        }
        json.get_ref<Json::object_t&>().swap(changed);
    }

    Secrecy secrecyOf(const std::string& name) const
    {
        const auto letters = View(name, false).letters;
        const auto rule =
            std::ranges::find_if(forms.names, [&](const Form& form) {
                return form.matches(letters);
            });
        return rule == forms.names.end() ? Secrecy::unruled : rule->secrecy;
    }

    /** Vital product data often comes as the bytes of a text. */
    void changeBytes(Json& bytes, Secrecy secrecy)
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
            change(text, secrecy);
            std::ranges::copy(text, bytes.begin());
        }
    }

    void change(std::string& text, Secrecy secrecy)
    {
        for (const auto isPath : {false, true})
        {
            if (isPath && !text.starts_with('/'))
            {
                return;
            }
            const View view(text, isPath);
            if (isMasking)
            {
                mask(text, view, secrecy);
            }
            else if (secrecy != Secrecy::harmless)
            {
                collect(view.text, secrecy);
            }
        }
    }

    void collect(std::string text, Secrecy secrecy)
    {
        const auto start = std::min(text.find_first_not_of(' '), text.size());
        text = text.substr(start, text.find_last_not_of(' ') + 1 - start);
        auto isKnown = false;
        for (const auto& form : forms.texts)
        {
            form.forEach(text, [&](const std::string& match) {
                isKnown |= match == text;
                noteForm(match, form.secrecy);
            });
        }
        const auto isHost =
            secrecy == Secrecy::address && forms.hostName.matches(text);
        if (!isKnown && (secrecy == Secrecy::identifier ||
                         secrecy == Secrecy::host || isHost))
        {
            note(text, isHost ? Secrecy::host : secrecy);
        }
    }

    void noteForm(std::string text, Secrecy secrecy)
    {
        // A colon after an address is not a part of it.
        if (secrecy == Secrecy::address && text.ends_with(':') &&
            !text.ends_with("::"))
        {
            text.pop_back();
        }
        if (secrecy == Secrecy::host ||
            (secrecy == Secrecy::address ? isTellingAddress(text)
                                         : isTellingNumber(text)))
        {
            note(text, secrecy);
        }
    }

    void note(std::string_view text, Secrecy secrecy)
    {
        for (const std::string_view mark : {"0x", "eui.", "naa."})
        {
            text.remove_prefix(text.starts_with(mark) ? mark.size() : 0);
        }
        const std::string spelling(text);
        const auto letters = lettersOf(spelling);
        if (!forms.placeholder.matches(letters))
        {
            auto& secret = secrets.emplace(letters, Secret{secrecy, spelling})
                               .first->second;
            secret.isMixed |= secret.secrecy != secrecy;
            secret.secrecy = std::min(secret.secrecy, secrecy);
            lengths.insert(letters.size());
        }
    }

    /** Different masks for different secrets, and none that is a secret. */
    void assignMasks()
    {
        std::map<std::string, std::vector<Secrets::pointer>> shapes;
        for (auto& secret : secrets)
        {
            const auto& [secrecy, spelling, mask, isMixed] = secret.second;
            shapes[maskOf(spelling, secrecy, 0)].push_back(&secret);
        }
        for (const auto& [shape, alike] : shapes)
        {
            uint64_t number = 0;
            for (std::size_t index = 0; index < alike.size(); ++index)
            {
                auto& [secrecy, spelling, mask, isMixed] = alike[index]->second;
                do
                {
                    mask = maskOf(spelling, secrecy, ++number);
                } while (secrets.contains(mask));
                // With none left, one secret stands for another.
                mask = mask.empty() ? alike[(index + 1) % alike.size()]->first
                                    : mask;
            }
        }
    }

    /** Puts masks in place of the longest secrets that fit. */
    void mask(std::string& text, const View& view, Secrecy secrecy) const
    {
        const std::string_view letters = view.letters;
        for (std::size_t start = 0; start < letters.size();)
        {
            auto end = start + 1;
            for (const auto length : lengths)
            {
                const auto found = secrets.find(letters.substr(start, length));
                if (found != secrets.end() &&
                    fits(*found, text, view, start, secrecy))
                {
                    end = start + found->first.size();
                    for (auto place = start; place < end; ++place)
                    {
                        putLetter(text, view.places[place],
                                  found->second.mask[place - start]);
                    }
                    break;
                }
            }
            start = end;
        }
    }

    static bool fits(const Secrets::value_type& secret, const std::string& text,
                     const View& view, std::size_t start, Secrecy secrecy)
    {
        const auto& [letters, rest] = secret;
        const auto isIdentifier = rest.secrecy == Secrecy::identifier;
        if (isIdentifier && letters.size() >= unmistakable)
        {
            return true;
        }
        const auto end = start + letters.size();
        const auto& words = view.words;
        const auto isApart = (start == 0 || words[start - 1] != words[start]) &&
                             words[end - 1] != words[end];
        if (!isApart || (rest.secrecy == Secrecy::host &&
                         (text.starts_with('/') ||
                          text.starts_with("xyz.openbmc_project."))))
        {
            return false;
        }
        if (letters.size() < shortest)
        {
            const auto isNamed =
                secrecy > Secrecy::harmless &&
                (secrecy == Secrecy::identifier) == isIdentifier;
            return text.substr(0, view.places[start]).ends_with("://") ||
                   (isNamed && letters.size() == view.letters.size());
        }
        // Numbers alone make an address only with marks, and a serial number
        // only without.
        const auto hasMarks = words[start] != words[end - 1];
        return rest.isMixed || hasMarks == (rest.secrecy == Secrecy::address) ||
               !std::ranges::all_of(letters, isDigit);
    }

    const Forms forms{};
    Secrets secrets;
    std::set<std::size_t, std::greater<>> lengths;
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
