// SPDX-License-Identifier: Apache-2.0
#include "cli/terminal_text.hpp"
#include "command.hpp"
#include "screen.hpp"

#include <morvath.h>
#include <strings.h>
#include <time.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <memory>
#include <stdexcept>

namespace morvath::tools
{
namespace
{

/** The library's code for a value that it refuses unsent. */
constexpr int32_t rejected = -3;

// A longer one is accepted, and then reads as none.
constexpr std::size_t longestText = 199;
constexpr std::size_t widestValue = 60;

struct LldpOptions
{
    std::string adapter;
    std::string port;
    std::string state;
};

// The library ends the process for a path of more than 127 characters, of
// which 72 are not these names.
constexpr std::size_t longestNames = 55;

bool isPathCharacter(char character)
{
    return (character >= 'a' && character <= 'z') ||
           (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') || character == '_';
}

cli::Parameter segmentArgument(const std::string& name, std::string& segment,
                               const std::string& meaning)
{
    const auto take = [name, &segment](const std::string& given) {
        if (given.empty() || !std::ranges::all_of(given, isPathCharacter))
        {
            throw cli::Misuse(name + ": \"" + given +
                              "\" is not a segment of an object path");
        }
        segment = given;
    };
    return {
        .names = name, .meaning = meaning, .take = take, .isRequired = true};
}

std::optional<int64_t> wholeNumberIn(const std::string& text)
{
    int64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number)
                                               : std::nullopt;
}

/** Seconds since 1970, a time as in ISO 8601, or the time of this machine. */
std::optional<int64_t> timeIn(const std::string& value)
{
    tm parts{};
    parts.tm_isdst = -1;
    const char* zone = strptime(value.c_str(), "%Y-%m-%dT%H:%M:%S", &parts);
    if (!zone)
    {
        return value == "now" ? time(nullptr) : wholeNumberIn(value);
    }
    if (!*zone)
    {
        return mktime(&parts);
    }
    const char* end = strptime(zone, "%z", &parts);
    const auto offset = parts.tm_gmtoff;
    return end && !*end ? std::optional(timegm(&parts) - offset) : std::nullopt;
}

/** By its word or, for people with a table of codes, by its code. */
std::optional<int64_t> codeIn(std::span<const std::string_view> words,
                              const std::string& value)
{
    const auto place = std::ranges::find(words, value) - words.begin();
    const auto code = static_cast<std::size_t>(place) < words.size()
                          ? std::optional<int64_t>(place)
                          : wholeNumberIn(value);
    return code && *code < std::ssize(words) ? code : std::nullopt;
}

/** Unsent when it is not a value that the fact can have. */
int32_t send(const Fact& fact, const std::string& value)
{
    if (const auto* set = std::get_if<int32_t (*)(const char*)>(&fact.set))
    {
        // To the library any beginning of a word is the word: a slip.
        const auto isIt = [&value](std::string_view word) {
            return strcasecmp(value.c_str(), word.data()) == 0;
        };
        const auto isKnown =
            fact.words.empty() || std::ranges::any_of(fact.words, isIt);
        return isKnown && value.size() <= longestText ? (*set)(value.c_str())
                                                      : rejected;
    }
    const auto number =
        fact.words.empty() ? timeIn(value) : codeIn(fact.words, value);
    if (!number || *number < 0 || *number > std::numeric_limits<int32_t>::max())
    {
        return rejected;
    }
    const auto code = static_cast<int32_t>(*number);
    const auto* set = std::get_if<int32_t (*)(int32_t)>(&fact.set);
    return set ? (*set)(code) : std::get<int32_t (*)(uint32_t)>(fact.set)(code);
}

/** What can be written, for people. */
std::string acceptedBy(const Fact& fact)
{
    Texts kinds(fact.words.begin(), fact.words.end());
    if (!fact.values.empty())
    {
        kinds.emplace_back(fact.values);
    }
    const auto last = kinds.back();
    kinds.pop_back();
    return joined(kinds, ", ") + (kinds.empty() ? "" : " or ") + last;
}

/** Runs what writes; raises what it was if it fails, and why. */
template <typename Action>
int write(const std::string& what, const Action& action)
try
{
    action();
    return complete;
}
catch (const cli::Misuse&)
{
    throw;
}
catch (const Absent&)
{
    throw std::runtime_error(what + ": the platform does not have it");
}
catch (const std::exception& error)
{
    throw std::runtime_error(what + ": " + error.what());
}

int setLldp(const LldpOptions& options)
{
    const auto& [adapter, port, state] = options;
    if (adapter.size() + port.size() > longestNames)
    {
        throw cli::Misuse("ADAPTER PORT: the names are too long together");
    }
    useBus();
    return write("port " + port + " of " + adapter, [&options] {
        requireSuccess(setLldpEnalbed(options.adapter.c_str(),
                                      options.port.c_str(),
                                      options.state == "on"));
    });
}

cli::Command lldpSetting()
{
    const auto options = std::make_shared<LldpOptions>();
    const auto take = [options](const std::string& state) {
        options->state = state;
    };
    return {
        .name = "lldp",
        .meaning = "Switch LLDP of a network port",
        .parameters =
            {segmentArgument("ADAPTER", options->adapter,
                             "Last segment of the adapter's object path"),
             segmentArgument("PORT", options->port,
                             "Last segment of the port's object path"),
             {.names = "STATE",
              .meaning = "The new state, on or off",
              .take = take,
              .isRequired = true,
              .words = {{"on", ""}, {"off", ""}}},
             timeoutOption()},
        .run = [options] { return setLldp(*options); },
    };
}

void setFact(const Fact& fact, const std::string& value)
{
    useBus();
    const auto code = send(fact, value);
    if (code == rejected)
    {
        throw cli::Misuse(std::string(fact.name) + ": \"" +
                          cli::visible(value, widestValue) + "\" is not " +
                          acceptedBy(fact));
    }
    requireSuccess(code);
    // Writing a list can seem to work.
    if (fact.kind == Fact::Kind::list &&
        readFact(fact) != Value(partsOf(value)))
    {
        throw std::runtime_error(
            "the platform accepted the value, but does not use it");
    }
}

cli::Command settingOf(const Fact& fact)
{
    const auto value = std::make_shared<std::string>();
    const auto take = [value](const std::string& given) {
        *value += (value->empty() ? "" : " ") + given;
    };
    cli::Terms words;
    for (const auto& word : fact.words)
    {
        words.push_back({std::string(word), ""});
    }
    return {
        .name = std::string(fact.name),
        .meaning = std::string(fact.summary),
        .parameters = {{.names = "VALUE",
                        .meaning = "The new value",
                        .take = take,
                        .isRequired = true,
                        .isRepeated = fact.kind == Fact::Kind::list,
                        .words = words,
                        .takesOthers = true},
                       timeoutOption()},
        .run =
            [&fact, value] {
                return write(std::string(fact.name),
                             [&] { setFact(fact, *value); });
            },
        .notes = "VALUE is " + acceptedBy(fact) + '.',
    };
}

} // namespace

cli::Command setCommand()
{
    cli::Command command{.name = "set", .meaning = "Change a setting"};
    for (const auto& fact : facts())
    {
        if (fact.isWritable())
        {
            command.commands.push_back(settingOf(fact));
        }
    }
    command.commands.push_back(lldpSetting());
    command.explain = [](const std::string& word) {
        return findFact(word) ? std::optional(word + " cannot be set")
                              : std::nullopt;
    };
    return command;
}

} // namespace morvath::tools
