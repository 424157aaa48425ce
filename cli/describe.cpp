// SPDX-License-Identifier: Apache-2.0
#include "cli/words.hpp"

#include <algorithm>
#include <span>

/*
 * JSON by hand, in one line: the texts are this program's own, and the library
 * for JSON costs more to compile than all else here.
 */
namespace morvath::cli
{
namespace
{

std::string quoted(const std::string& text)
{
    std::string json = "\"";
    for (const char character : text)
    {
        json += character == '"' || character == '\\' ? "\\" : "";
        json += character == '\n' ? "\\n" : std::string(1, character);
    }
    return json + '"';
}

/** A list of what is described one by one. */
template <typename Items, typename Describe>
std::string listed(const Items& items, const Describe& describe)
{
    std::string json;
    for (const auto& item : items)
    {
        json += (json.empty() ? "" : ",") + describe(item);
    }
    return '[' + json + ']';
}

std::string describedTerms(const Terms& terms)
{
    return listed(terms, [](const Term& term) {
        return "{\"name\":" + quoted(term.name) +
               ",\"meaning\":" + quoted(term.meaning) + '}';
    });
}

std::string describedParameter(const Parameter& parameter)
{
    const auto truth = [](bool value) { return value ? "true" : "false"; };
    const auto names =
        isArgument(parameter) ? std::vector<std::string>() : namesOf(parameter);
    return "{\"names\":" + listed(names, quoted) +
           ",\"value\":" + quoted(valueOf(parameter)) +
           ",\"meaning\":" + quoted(parameter.meaning) +
           ",\"required\":" + truth(parameter.isRequired) +
           ",\"repeated\":" + truth(parameter.isRepeated) +
           ",\"choices\":" + describedTerms(parameter.words) + '}';
}

/** Without the closing brace: a program has more to say. */
std::string describedCommand(const Command& command, bool isProgram)
{
    auto options = command.parameters;
    options.push_back({"-h,--help", "Print this help and exit", {}});
    if (isProgram)
    {
        options.push_back({"--version", "Print the version and exit", {}});
    }
    const auto arguments = std::stable_partition(
        options.begin(), options.end(),
        [](const Parameter& parameter) { return !isArgument(parameter); });
    const auto inner = [](const Command& one) {
        return describedCommand(one, false) + '}';
    };
    return "{\"name\":" + quoted(command.name) +
           ",\"meaning\":" + quoted(command.meaning) + ",\"options\":" +
           listed(std::span(options.begin(), arguments), describedParameter) +
           ",\"arguments\":" +
           listed(std::span(arguments, options.end()), describedParameter) +
           ",\"commands\":" + listed(command.commands, inner) +
           ",\"notes\":" + quoted(command.notes);
}

} // namespace

std::string descriptionOf(const Command& program, const About& about)
{
    return describedCommand(program, true) +
           ",\"version\":" + quoted(about.version) +
           ",\"exitStatuses\":" + describedTerms(about.exitStatuses) +
           ",\"environment\":" + describedTerms(about.environment) +
           ",\"examples\":" + describedTerms(about.examples) + '}';
}

} // namespace morvath::cli
