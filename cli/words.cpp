// SPDX-License-Identifier: Apache-2.0
#include "cli/words.hpp"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace morvath::cli
{
namespace
{

// More than one slip in so many letters makes another word.
constexpr std::size_t lettersPerSlip = 3;

/** Letters to insert, remove, replace, or swap with the next one. */
std::size_t slipsBetween(std::string_view one, std::string_view other)
{
    std::vector slips(one.size() + 1,
                      std::vector<std::size_t>(other.size() + 1));
    for (std::size_t i = 0; i <= one.size(); ++i)
    {
        for (std::size_t j = 0; j <= other.size(); ++j)
        {
            if (i == 0 || j == 0)
            {
                slips[i][j] = i + j;
                continue;
            }
            const auto isOther = one[i - 1] != other[j - 1];
            slips[i][j] = std::min({slips[i - 1][j] + 1, slips[i][j - 1] + 1,
                                    slips[i - 1][j - 1] + isOther});
            if (i > 1 && j > 1 && one[i - 1] == other[j - 2] &&
                one[i - 2] == other[j - 1])
            {
                slips[i][j] = std::min(slips[i][j], slips[i - 2][j - 2] + 1);
            }
        }
    }
    return slips.back().back();
}

const Command* commandNamed(const Command& parent, const std::string& name)
{
    const auto found = std::ranges::find(parent.commands, name, &Command::name);
    return found == parent.commands.end() ? nullptr : &*found;
}

const Parameter* optionNamed(const Command& command, const std::string& name)
{
    for (const auto& parameter : command.parameters)
    {
        const auto names = namesOf(parameter);
        if (std::ranges::find(names, name) != names.end())
        {
            return &parameter;
        }
    }
    return nullptr;
}

/** The arguments of a command by their place; the last one may repeat. */
const Parameter* argumentAt(const Command& command, std::size_t place)
{
    for (const auto& parameter : command.parameters)
    {
        if (isArgument(parameter) && (parameter.isRepeated || place-- == 0))
        {
            return &parameter;
        }
    }
    return nullptr;
}

/** A word of a command line, and the place where it was given. */
struct Word
{
    std::string text;
    std::size_t place;
};

/** The words, with those that "=" joins apart; bash takes it for a word. */
std::vector<Word> separated(const std::vector<std::string>& given)
{
    std::vector<Word> words;
    for (std::size_t place = 0; place < given.size(); ++place)
    {
        const auto& word = given[place];
        const auto equals = word.find('=');
        const auto isJoined = word.starts_with("--") && equals != word.npos;
        if (word != "=")
        {
            words.push_back({isJoined ? word.substr(0, equals) : word, place});
        }
        if (isJoined)
        {
            words.push_back({word.substr(equals + 1), place});
        }
    }
    if (given.empty() || given.back() == "=")
    {
        words.push_back({"", given.size()});
    }
    return words;
}

/** All that an option or argument can be. */
Terms valuesOf(const Parameter& parameter)
{
    auto values = parameter.words;
    const auto value = valueOf(parameter);
    if (value == fileValue || value == commandValue)
    {
        values.push_back({"\t" + value, ""});
    }
    return values;
}

} // namespace

std::string unknown(const std::string& kind, const std::string& word,
                    const Terms& known)
{
    auto message = "no " + kind + " '" + word + '\'';
    const std::string* nearest = nullptr;
    std::size_t least = word.size() / lettersPerSlip + 1;
    for (const auto& [name, meaning] : known)
    {
        // What is that much longer cannot be near; comparing costs both sizes.
        if (word.size() > name.size() + least)
        {
            continue;
        }
        const auto slips = slipsBetween(word, name);
        if (slips < least)
        {
            least = slips;
            nearest = &name;
        }
    }
    return nearest ? message + "; did you mean '" + *nearest + "'?" : message;
}

bool isArgument(const Parameter& parameter)
{
    return !parameter.names.starts_with('-');
}

std::vector<std::string> namesOf(const Parameter& parameter)
{
    std::vector<std::string> names;
    std::string_view rest = parameter.names;
    while (!rest.empty())
    {
        names.emplace_back(rest.substr(0, rest.find(',')));
        rest.remove_prefix(std::min(rest.size(), names.back().size() + 1));
    }
    return names;
}

std::string valueOf(const Parameter& parameter)
{
    return isArgument(parameter) ? parameter.names : parameter.value;
}

Terms commandsOf(const Command& command)
{
    Terms names;
    for (const auto& inner : command.commands)
    {
        names.push_back({inner.name, inner.meaning});
    }
    return names;
}

Terms usualOptions(bool isProgram)
{
    Terms options{{"--help", "Print this help and exit"}};
    if (isProgram)
    {
        options.push_back({"--version", "Print the version and exit"});
    }
    return options;
}

Terms optionsOf(const Command& command, bool isProgram)
{
    Terms options;
    for (const auto& parameter : command.parameters)
    {
        for (const auto& name : namesOf(parameter))
        {
            options.push_back({name, parameter.meaning});
        }
    }
    std::ranges::move(usualOptions(isProgram), std::back_inserter(options));
    return options;
}

std::string completionOf(const Command& program,
                         const std::vector<std::string>& given)
{
    auto words = separated(given);
    const auto start = words.back().text;
    words.pop_back();
    const auto* command = &program;
    const Parameter* awaited = nullptr;
    std::size_t arguments = 0;
    for (const auto& [word, place] : words)
    {
        const auto* argument = argumentAt(*command, arguments);
        const auto isOther = argument && valueOf(*argument) == commandValue;
        if (awaited)
        {
            awaited = nullptr;
        }
        else if (isOther && (word == "--" || !word.starts_with('-')))
        {
            return '\t' + std::string(commandValue) + ' ' +
                   std::to_string(place + (word == "--")) + '\n';
        }
        else if (word.starts_with('-'))
        {
            const auto* option = optionNamed(*command, word);
            awaited = option && !option->value.empty() ? option : nullptr;
        }
        else if (const auto* inner = commandNamed(*command, word))
        {
            command = inner;
        }
        else
        {
            ++arguments;
        }
    }
    const auto* argument = argumentAt(*command, arguments);
    const auto offers = awaited ? valuesOf(*awaited)
                        : start.starts_with('-')
                            ? optionsOf(*command, command == &program)
                        : argument       ? valuesOf(*argument)
                        : arguments == 0 ? commandsOf(*command)
                                         : Terms();
    std::string text;
    for (const auto& [name, meaning] : offers)
    {
        const auto isKind = name.starts_with('\t');
        if (isKind || name.starts_with(start))
        {
            text += isKind ? name + '\n' : name + '\t' + meaning + '\n';
        }
    }
    return text;
}

} // namespace morvath::cli
