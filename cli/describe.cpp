// SPDX-License-Identifier: Apache-2.0
#include "cli/describe.hpp"

#include "cli/help.hpp"

#include <nlohmann/json.hpp>

namespace morvath::cli
{
namespace
{

using Json = nlohmann::ordered_json;

Json describeTerms(const Terms& terms)
{
    auto list = Json::array();
    for (const auto& [name, meaning] : terms)
    {
        list.push_back({{"name", name}, {"meaning", meaning}});
    }
    return list;
}

Json describeOption(const CLI::Option& option, const Choices& choices)
{
    auto names = Json::array();
    for (const auto& name : option.get_snames())
    {
        names.push_back('-' + name);
    }
    for (const auto& name : option.get_lnames())
    {
        names.push_back("--" + name);
    }
    const auto found = choices.find(&option);
    return {{"names", names},
            {"value", valueName(option)},
            {"meaning", option.get_description()},
            {"required", option.get_required()},
            {"repeated", option.get_items_expected_max() > 1},
            {"choices",
             describeTerms(found == choices.end() ? Terms() : found->second)}};
}

Json describeCommand(const CLI::App& command, const Choices& choices)
{
    auto options = Json::array();
    auto arguments = Json::array();
    for (const auto* option : command.get_options())
    {
        if (!option->get_group().empty())
        {
            (option->get_positional() ? arguments : options)
                .push_back(describeOption(*option, choices));
        }
    }
    auto commands = Json::array();
    for (const auto* inner : command.get_subcommands({}))
    {
        commands.push_back(describeCommand(*inner, choices));
    }
    return {{"name", command.get_name()},
            {"meaning", command.get_description()},
            {"options", options},
            {"arguments", arguments},
            {"commands", commands},
            {"notes", command.get_parent() ? command.get_footer() : ""}};
}

} // namespace

std::string describe(const CLI::App& app, const About& about,
                     const Choices& choices)
{
    auto program = describeCommand(app, choices);
    program["version"] = about.version;
    program["exitStatuses"] = describeTerms(about.exitStatuses);
    program["environment"] = describeTerms(about.environment);
    program["examples"] = describeTerms(about.examples);
    return program.dump(2);
}

} // namespace morvath::cli
