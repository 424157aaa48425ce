// SPDX-License-Identifier: Apache-2.0
#include "sim/json_value.hpp"
#include "sim/record/record.hpp"
#include "sim/record/rules.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace morvath::sim
{
namespace
{

// What is shorter stands in other texts by chance; from the second length on
// it may be a part of a word; for what is longer, looking would take long.
constexpr std::size_t shortest = 4;
constexpr std::size_t unmistakable = 8;
constexpr std::size_t longest = 128;

bool isDigit(char character) { return character >= '0' && character <= '9'; }

bool isHex(char character)
{
    return std::isxdigit(static_cast<unsigned char>(character)) != 0;
}

/** A text, and its letters and digits alone, in small letters. */
struct View
{
    /** @param[in] isPath  whether "_3a" is a colon, as in object paths */
    explicit View(const std::string& whole, bool isPath = false)
    {
        for (std::size_t place = 0; place < whole.size(); ++place)
        {
            const auto start = place;
            text += whole[place];
            if (isPath && whole[place] == '_' && isHex(whole[place + 1]) &&
                isHex(whole[place + 2]))
            {
                const auto code = whole.substr(place + 1, 2);
                text.back() = static_cast<char>(std::stoi(code, nullptr, 16));
                place += code.size();
            }
            const auto byte = static_cast<unsigned char>(text.back());
            if (byte >= 0x80 || std::isalnum(byte) != 0)
            {
                letters += static_cast<char>(std::tolower(byte));
                places.push_back(start);
                spots.push_back(text.size() - 1);
            }
        }
    }

    /** Whether there is something else between two letters. */
    bool isBroken(std::size_t first, std::size_t last) const
    {
        return spots[last] - spots[first] != last - first;
    }

    /** Whether there is something else before a letter, or it is the end. */
    bool isBorder(std::size_t letter) const
    {
        return letter == 0 || letter == letters.size() ||
               isBroken(letter - 1, letter);
    }

    std::string text{};
    std::string letters{};
    /** Of each letter in the whole. */
    std::vector<std::size_t> places{};
    /** Of each letter in the text. */
    std::vector<std::size_t> spots{};
};

/** Puts a letter of a mask in place of one, or of the code of one. */
void putLetter(std::string& text, std::size_t place, char letter)
{
    if (text[place] == '_')
    {
        text[place + 1] = isDigit(letter) ? '3' : '6';
        text[place + 2] = static_cast<char>('0' + letter % 16);
        return;
    }
    const auto isCapital = text[place] >= 'A' && text[place] <= 'Z';
    text[place] = static_cast<char>(isCapital ? std::toupper(letter) : letter);
}

/** The masks of a shape by number; an empty one when there are no more. */
std::string maskOf(std::string letters, Kind kind, uint64_t number)
{
    // Wherever the dots are, an address of these is one.
    const std::string_view digits = kind == Kind::address ? "12" : "0123456789";
    for (auto letter = letters.rbegin(); letter != letters.rend(); ++letter)
    {
        const auto alphabet = isDigit(*letter) ? digits : "abcdef";
        *letter = alphabet[number % alphabet.size()];
        number /= alphabet.size();
    }
    return number == 0 ? letters : "";
}

/** Collects the secrets of a scenario, and then masks them. */
class Anonymizer
{
  public:
    void anonymize(Json& scenario)
    {
        walk(scenario, nullptr, false);
        assignMasks();
        isMasking = true;
        walk(scenario, nullptr, false);
    }

  private:
    struct Secret
    {
        Kind kind;
        /** Whether it was found without marks in it, and with some. */
        std::array<bool, 2> spellings{};
        std::string mask{};
    };

    /**
     * @param[in] named    the rule for the property, if any
     * @param[in] isValue  whether keys belong to a dictionary of the bus
     */
    void walk(Json& json, const Rule* named, bool isValue)
    {
        if (json.is_string())
        {
            change(json.get_ref<std::string&>(), named);
        }
        else if (json.contains("type") && json.contains("value"))
        {
            auto& value = json["value"];
            json["type"] == "ay" && value.is_array() ? changeBytes(value, named)
                                                     : walk(value, named, true);
        }
        else if (json.is_structured())
        {
            // Of these bytes of a record nobody knows what they tell.
            if (!isValue && json.contains("raw") &&
                !json["raw"].contains("type"))
            {
                json.erase("raw");
            }
            for (auto& [name, member] : json.items())
            {
                const auto* own = json.is_object() ? ruleOf(name) : nullptr;
                walk(member, isValue && !own ? named : own, isValue);
            }
            if (isValue && json.is_object())
            {
                changeKeys(json.get_ref<Json::object_t&>());
            }
        }
    }

    void changeKeys(Json::object_t& members)
    {
        Json::object_t changed;
        for (auto& [name, member] : members)
        {
            auto key = name;
            change(key, nullptr);
            changed.emplace_back(std::move(key), std::move(member));
        }
        members.swap(changed);
    }

    /** Vital product data often comes as the bytes of a text. */
    void changeBytes(Json& bytes, const Rule* named)
    {
        const auto all = bytes.get<std::vector<unsigned char>>();
        std::string text(all.begin(), std::ranges::find(all, '\0'));
        if (std::ranges::all_of(text, [](unsigned char byte) {
                return std::isprint(byte) != 0;
            }))
        {
            change(text, named);
            std::ranges::copy(text, bytes.begin());
        }
    }

    const Rule* ruleOf(const std::string& name) const
    {
        const auto letters = View(name).letters;
        const auto* rule =
            std::ranges::find_if(rules.names, [&](const Rule& one) {
                return one.expression.matches(letters);
            });
        return rule == rules.names.end() ? nullptr : rule;
    }

    void change(std::string& text, const Rule* named)
    {
        for (const auto isPath : {false, true})
        {
            if (!isPath || text.starts_with('/'))
            {
                const View view(text, isPath);
                isMasking ? mask(text, view, named) : collect(view.text, named);
            }
        }
    }

    void collect(std::string text, const Rule* named)
    {
        if (named && named->kind == Kind::harmless)
        {
            return;
        }
        text.erase(text.find_last_not_of(' ') + 1);
        text.erase(0, text.find_first_not_of(' '));
        const auto end = static_cast<regoff_t>(text.size());
        for (const auto& [kind, form, exception] : rules.forms)
        {
            std::array<regmatch_t, 4> groups{{{0, end}}};
            while (regexec(&form.compiled, text.c_str(), groups.size(),
                           groups.data(), REG_STARTEND) == 0)
            {
                const auto [from, to] = groups[3];
                const auto match = text.substr(from, to - from);
                if (!exception.matches(match))
                {
                    note(match, kind);
                }
                named = groups[1].rm_eo == 0 && to == end ? nullptr : named;
                groups[0] = {to, end};
            }
        }
        if (named && !named->exception.matches(text))
        {
            note(text, named->kind);
        }
    }

    void note(const std::string& text, Kind kind)
    {
        const View view(text);
        const auto& letters = view.letters;
        if (!rules.placeholder.matches(letters))
        {
            auto& secret = secrets.emplace(letters, Secret{kind}).first->second;
            secret.kind = std::min(secret.kind, kind);
            secret.spellings[view.isBroken(0, letters.size() - 1)] = true;
        }
    }

    /** Different masks for different secrets, and none that is a secret. */
    void assignMasks()
    {
        std::map<std::string, std::pair<uint64_t, std::string>> shapes;
        for (auto& [letters, secret] : secrets)
        {
            const auto shape = maskOf(letters, secret.kind, 0);
            auto& [number, previous] =
                shapes.try_emplace(shape, 0, shape).first->second;
            do
            {
                secret.mask = maskOf(letters, secret.kind, ++number);
                if (secret.mask.empty())
                {
                    // Rather an address that there cannot be than none.
                    secret.mask = maskOf(letters, Kind::identifier, number);
                }
            } while (secrets.contains(secret.mask));
            // With none left, one secret stands for another.
            secret.mask = secret.mask.empty() ? previous : secret.mask;
            previous = letters;
        }
    }

    /** Puts masks in place of the longest secrets that fit. */
    void mask(std::string& text, const View& view, const Rule* named) const
    {
        const auto isNamed = named && !named->exception.matches(view.text);
        const auto whole = isNamed ? secrets.find(view.letters) : secrets.end();
        for (std::size_t start = 0; start < view.letters.size();)
        {
            const auto& mask = whole == secrets.end() ? maskAt(start, view)
                                                      : whole->second.mask;
            for (std::size_t index = 0; index < mask.size(); ++index)
            {
                putLetter(text, view.places[start + index], mask[index]);
            }
            start += std::max<std::size_t>(mask.size(), 1);
        }
    }

    /** Of the longest secret that fits there; otherwise empty. */
    std::string maskAt(std::size_t start, const View& view) const
    {
        auto rest = std::string_view(view.letters).substr(start, longest);
        for (auto next = secrets.upper_bound(rest); next != secrets.begin();
             next = secrets.upper_bound(rest))
        {
            const auto& [letters, secret] = *std::prev(next);
            if (rest.starts_with(letters) &&
                fits(secret, view, start, start + letters.size()))
            {
                return secret.mask;
            }
            // Others that the rest begins with are shorter, and begin both.
            const auto [end, other] = std::ranges::mismatch(letters, rest);
            const std::string_view common(letters.begin(), end);
            rest = common.substr(0, letters.size() - 1);
        }
        return {};
    }

    static bool fits(const Secret& secret, const View& view, std::size_t start,
                     std::size_t end)
    {
        const std::string_view text = view.text;
        const auto isShort = end - start < unmistakable;
        if (!isShort && secret.kind == Kind::identifier)
        {
            return true;
        }
        // Names on the bus are not those of hosts.
        const auto isName =
            text.starts_with('/') || text.starts_with("xyz.openbmc_project.");
        const auto isHost = text.substr(0, view.spots[start]).ends_with("://");
        const auto isNumber =
            isShort &&
            std::all_of(&view.letters[start], &view.letters[end], isDigit);
        return view.isBorder(start) && view.isBorder(end) &&
               (end - start >= shortest || isHost) &&
               (secret.kind != Kind::host || !isName) &&
               (!isNumber || secret.spellings[view.isBroken(start, end - 1)]);
    }

    const Rules rules{};
    /** By their letters. */
    std::map<std::string, Secret, std::less<>> secrets;
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
