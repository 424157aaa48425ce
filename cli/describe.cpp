// SPDX-License-Identifier: Apache-2.0
#include "cli/words.hpp"

#include <nlohmann/json.hpp>

namespace morvath::cli
{
namespace
{

using Json = nlohmann::ordered_json;

Json describe(const Terms& terms)
{
    auto list = Json::array();
    for (const auto& [name, meaning] : terms)
    {
        list.push_back({{"name", name}, {"meaning", meaning}});
    }
    return list;
}

Json describe(const Parameter& parameter)
{
    auto names = Json::array();
    if (!isArgument(parameter))
    {
        for (const auto& name : namesOf(parameter))
        {
            names.push_back(name.name);
        }
    }
    return {{"names", names},
            {"value", valueOf(parameter)},
            {"meaning", parameter.meaning},
            {"required", parameter.isRequired},
            {"repeated", parameter.isRepeated},
            {"choices", describe(parameter.words)}};
}

Json describe(const Command& command)
{
    auto options = Json::array();
    auto arguments = Json::array();
    for (const auto& parameter : command.parameters)
    {
        (isArgument(parameter) ? arguments : options)
            .push_back(describe(parameter));
    }
    options.push_back(
        describe(Parameter{"-h,--help", "Print this help and exit", {}}));
    auto commands = Json::array();
    for (const auto& inner : command.commands)
    {
        commands.push_back(describe(inner));
    }
    return {{"name", command.name}, {"meaning", command.meaning},
            {"options", options},   {"arguments", arguments},
            {"commands", commands}, {"notes", command.notes}};
}

} // namespace

std::string descriptionOf(const Command& program, const About& about)
{
    auto description = describe(program);
    description["options"].push_back(
        describe(Parameter{"--version", "Print the version and exit", {}}));
    description["version"] = about.version;
    description["exitStatuses"] = describe(about.exitStatuses);
    description["environment"] = describe(about.environment);
    description["examples"] = describe(about.examples);
    return description.dump(2);
}

} // namespace morvath::cli
