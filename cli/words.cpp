// SPDX-License-Identifier: Apache-2.0
#include "cli/words.hpp"

#include <algorithm>
#include <sstream>

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
        if (std::ranges::find(names, name, &Term::name) != names.end())
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

class Completion
{
  public:
    Completion(const Command& program, const std::vector<std::string>& words) :
        program(program),
        command(&program),
        words(words)
    {}

    std::string lines()
    {
        for (std::size_t i = 0; i + 1 < words.size() && !text.ends_with('\n');
             ++i)
        {
            take(i);
        }
        if (text.empty())
        {
            offerFor(words.empty() ? std::string() : words.back());
        }
        return text;
    }

  private:
    /** A word before the one that is completed. */
    void take(std::size_t place)
    {
        const auto& word = words[place];
        if (word == "=")
        {
            return;
        }
        if (awaited)
        {
            awaited = nullptr;
            return;
        }
        const auto* argument = argumentAt(*command, arguments);
        const auto isOther = argument && valueOf(*argument) == commandValue;
        if (isOther && (word == "--" || !word.starts_with('-')))
        {
            text = "\t" + std::string(commandValue) + ' ' +
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

    void offerFor(const std::string& word)
    {
        const auto equals = word.find('=');
        if (!awaited && word.starts_with("--") && equals != word.npos)
        {
            awaited = optionNamed(*command, word.substr(0, equals));
            start = word.substr(equals + 1);
        }
        else
        {
            start = word == "=" ? "" : word;
        }
        if (awaited)
        {
            offerValue(*awaited);
        }
        else if (word.starts_with('-'))
        {
            offerOptions();
        }
        else if (const auto* argument = argumentAt(*command, arguments))
        {
            offerValue(*argument);
        }
        else if (arguments == 0)
        {
            for (const auto& inner : command->commands)
            {
                offer({inner.name, inner.meaning});
            }
        }
    }

    void offerOptions()
    {
        for (const auto& parameter : command->parameters)
        {
            for (const auto& name : namesOf(parameter))
            {
                if (name.name.starts_with('-'))
                {
                    offer({name.name, parameter.meaning});
                }
            }
        }
        offer({"--help", "Print this help and exit"});
        if (command == &program)
        {
            offer({"--version", "Print the version and exit"});
        }
    }

    void offerValue(const Parameter& parameter)
    {
        std::ranges::for_each(parameter.words,
                              [this](const Term& word) { offer(word); });
        const auto value = valueOf(parameter);
        if (value == fileValue || value == commandValue)
        {
            text.append("\t").append(value) += '\n';
        }
    }

    void offer(const Term& term)
    {
        if (term.name.starts_with(start))
        {
            text.append(term.name).append("\t").append(term.meaning) += '\n';
        }
    }

    const Command& program;
    const Command* command;
    const std::vector<std::string>& words;
    const Parameter* awaited = nullptr;
    std::size_t arguments = 0;
    std::string start;
    std::string text;
};

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

Terms namesOf(const Parameter& parameter)
{
    Terms names;
    std::istringstream list(parameter.names);
    for (std::string name; std::getline(list, name, ',');)
    {
        names.push_back({name, {}});
    }
    return names;
}

std::string valueOf(const Parameter& parameter)
{
    return isArgument(parameter) ? parameter.names : parameter.value;
}

std::string completionOf(const Command& program,
                         const std::vector<std::string>& words)
{
    return Completion(program, words).lines();
}

} // namespace morvath::cli
