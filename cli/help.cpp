// SPDX-License-Identifier: Apache-2.0
#include "cli/help.hpp"

#include <algorithm>

namespace morvath::cli
{

Help::Help(const Choices& choices) : choices_(choices)
{
    label("SUBCOMMAND", "COMMAND");
    label("Positionals", "Arguments");
}

std::string Help::make_option_opts(const CLI::Option* option) const
{
    const auto value = valueName(*option);
    return value.empty() || option->get_positional() ? "" : ' ' + value;
}

std::string Help::make_footer(const CLI::App* app) const
{
    auto text = app->get_footer();
    for (const auto* option : app->get_options())
    {
        const auto found = choices_.find(option);
        if (found != choices_.end() && !found->second.front().meaning.empty())
        {
            text += listOf(option->get_name(true), found->second);
        }
    }
    return text.empty() || text.ends_with('\n') ? text : text + '\n';
}

std::string valueName(const CLI::Option& option)
{
    if (option.get_type_size() == 0)
    {
        return {};
    }
    // What is checked follows after a colon; messages of errors tell it.
    const auto name = option.get_positional() ? option.get_name(true)
                                              : option.get_type_name();
    return name.substr(0, name.find(':'));
}

std::string listOf(const std::string& title, const Terms& terms)
{
    constexpr auto size = [](const Term& term) { return term.name.size(); };
    const auto width = std::ranges::max(terms, {}, size).name.size();
    auto text = title + ":\n";
    for (const auto& [name, meaning] : terms)
    {
        const std::string blanks(width - name.size() + 2, ' ');
        text.append("  ").append(name).append(blanks).append(meaning) += '\n';
    }
    return text;
}

} // namespace morvath::cli
