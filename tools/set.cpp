// SPDX-License-Identifier: Apache-2.0
#include "command.hpp"
#include "facts.hpp"

#include <morvath.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace morvath::tools
{
namespace
{

struct Options
{
    std::string value;
    std::optional<Seconds> timeout;
};

struct LldpOptions
{
    std::string adapter;
    std::string port;
    std::string state;
    std::optional<Seconds> timeout;
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
                              "\" is no segment of an object path");
        }
        segment = given;
    };
    return {
        .names = name, .meaning = meaning, .take = take, .isRequired = true};
}

int setLldp(const LldpOptions& options)
{
    const auto& [adapter, port, state, timeout] = options;
    if (adapter.size() + port.size() > longestNames)
    {
        throw cli::Misuse("ADAPTER PORT: the names are too long together");
    }
    useBus(timeout);
    try
    {
        requireWritten(
            setLldpEnalbed(adapter.c_str(), port.c_str(), state == "on"));
    }
    catch (const std::exception& error)
    {
        throw std::runtime_error("port " + port + " of " + adapter + ": " +
                                 error.what());
    }
    return complete;
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
             timeoutOption(options->timeout)},
        .run = [options] { return setLldp(*options); },
    };
}

int setFact(const Fact& fact, const Options& options)
{
    const std::string name(fact.name);
    try
    {
        useBus(options.timeout);
        writeFact(fact, options.value);
    }
    catch (const std::invalid_argument& error)
    {
        throw cli::Misuse(name + ": " + error.what());
    }
    catch (const std::exception& error)
    {
        throw std::runtime_error(name + ": " + error.what());
    }
    return complete;
}

cli::Command settingOf(const Fact& fact)
{
    const auto options = std::make_shared<Options>();
    const auto take = [options](const std::string& value) {
        options->value += (options->value.empty() ? "" : " ") + value;
    };
    cli::Terms words;
    for (const auto& word : fact.words)
    {
        words.push_back({std::string(word.text), ""});
    }
    return {
        .name = std::string(fact.name),
        .meaning = std::string(fact.summary),
        .parameters = {{.names = "VALUE",
                        .meaning = "The new value",
                        .take = take,
                        .isRequired = true,
                        .isRepeated = fact.takesSeveral,
                        .words = words,
                        .takesOthers = true},
                       timeoutOption(options->timeout)},
        .run = [&fact, options] { return setFact(fact, *options); },
        .notes = "VALUE is " + acceptedBy(fact) + '.',
    };
}

} // namespace

cli::Command setCommand()
{
    cli::Command command{.name = "set", .meaning = "Change a setting"};
    for (const auto& fact : facts())
    {
        if (fact.write)
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
