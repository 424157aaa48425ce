// SPDX-License-Identifier: Apache-2.0
#include "cli/suggest.hpp"

#include <algorithm>
#include <string_view>
#include <vector>

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

Terms optionNames(const CLI::App& command)
{
    Terms names;
    for (const auto* option : command.get_options())
    {
        // Without a group it is hidden.
        if (option->nonpositional() && !option->get_group().empty())
        {
            for (const auto& name : option->get_lnames())
            {
                names.push_back({"--" + name, {}});
            }
        }
    }
    return names;
}

const CLI::App& chosenCommand(const CLI::App& app)
{
    const auto* command = &app;
    while (!command->get_subcommands().empty())
    {
        command = command->get_subcommands().back();
    }
    return *command;
}

/** An unknown word also leaves what it stood for missing. */
bool isOfWords(const CLI::ParseError& error)
{
    const auto code = static_cast<CLI::ExitCodes>(error.get_exit_code());
    return code == CLI::ExitCodes::ExtrasError ||
           code == CLI::ExitCodes::RequiredError;
}

Terms commandNames(const CLI::App& parent)
{
    Terms names;
    for (const auto* command : parent.get_subcommands({}))
    {
        names.push_back({command->get_name(), {}});
    }
    return names;
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
        const auto slips = slipsBetween(word, name);
        if (slips < least)
        {
            least = slips;
            nearest = &name;
        }
    }
    return nearest ? message + "; did you mean '" + *nearest + "'?" : message;
}

std::string explain(const CLI::App& app, const CLI::ParseError& error)
{
    const auto& command = chosenCommand(app);
    const auto words = command.remaining();
    if (!isOfWords(error) || words.empty())
    {
        return error.what();
    }
    const auto& word = words.front();
    if (word.starts_with('-'))
    {
        return unknown("option", word.substr(0, word.find('=')),
                       optionNames(command));
    }
    const auto known = commandNames(command);
    return known.empty() ? "unexpected '" + word + '\''
                         : unknown("command", word, known);
}

} // namespace morvath::cli
