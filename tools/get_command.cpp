// SPDX-License-Identifier: Apache-2.0
#include "cli/suggest.hpp"
#include "command.hpp"
#include "facts.hpp"
#include "get.hpp"
#include "options.hpp"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace morvath::tools
{
namespace
{

cli::Terms factTerms()
{
    cli::Terms terms;
    for (const auto& fact : facts())
    {
        terms.push_back({std::string(fact.name), std::string(fact.summary)});
    }
    return terms;
}

const Fact* factOf(const std::string& name)
{
    const auto* fact = findFact(name);
    if (!fact)
    {
        throw CLI::ValidationError(cli::unknown("fact", name, factTerms()));
    }
    return fact;
}

void chooseAll(GetOptions& options)
{
    options.all = true;
    for (const auto& fact : facts())
    {
        options.facts.push_back(&fact);
    }
}

} // namespace

void addGet(cli::Program& program, Action& chosen)
{
    auto* command = program.app().add_subcommand("get", "Print facts");
    const auto options = std::make_shared<GetOptions>();
    command->callback([&chosen, options] {
        if (options->facts.empty())
        {
            throw CLI::RequiredError("FACT or --all");
        }
        chosen = [options] { return get(*options); };
    });
    auto* names = command->add_option_function<std::vector<std::string>>(
        "FACT",
        [options](const std::vector<std::string>& names) {
            std::ranges::transform(names, std::back_inserter(options->facts),
                                   factOf);
        },
        "The facts to print");
    program.offer(names, factTerms());
    command
        ->add_flag_callback(
            "--all", [options] { chooseAll(*options); },
            "Print all facts, n/a for what is missing")
        ->excludes(names);
    command->add_flag("--json", options->asJson,
                      "Print one JSON document instead of text");
    addTimeout(*command, options->timeout);
}

} // namespace morvath::tools
