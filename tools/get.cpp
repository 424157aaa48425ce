// SPDX-License-Identifier: Apache-2.0
#include "cli/terminal_text.hpp"
#include "command.hpp"
#include "screen.hpp"

#include <algorithm>
#include <memory>

namespace morvath::tools
{
namespace
{

struct GetOptions
{
    std::vector<const Fact*> facts;
    /** Whatever there is: what the platform does not have is not a failure. */
    bool all = false;
    bool asJson = false;
};

int listFacts()
{
    std::vector<Texts> rows;
    for (const auto& fact : facts())
    {
        rows.push_back({std::string(fact.name),
                        std::string(fact.summary) +
                            (fact.isWritable() ? " (can be set)" : "")});
    }
    print(textOf(inColumns(rows, "")));
    return complete;
}

/** A single value stands alone, for scripts; several have their names. */
void printValue(const FactReading& reading, const GetOptions& options)
{
    std::string line;
    if (options.facts.size() > 1)
    {
        const auto longest = std::ranges::max(
            options.facts, {}, [](auto* fact) { return fact->name.size(); });
        line = padded(std::string(reading.fact->name) + ": ",
                      longest->name.size() + 2);
    }
    print(line + cli::visible(shownText(*reading.fact, reading.value)) + '\n');
}

int get(GetOptions& options)
{
    if (options.all == !options.facts.empty())
    {
        throw cli::Misuse(options.all ? "FACT excludes --all"
                                      : "FACT or --all is required");
    }
    if (options.all)
    {
        for (const auto& fact : facts())
        {
            options.facts.push_back(&fact);
        }
    }
    useBus();
    std::vector<FactReading> readings;
    bool isComplete = true;
    for (const auto* fact : options.facts)
    {
        const auto& reading = readings.emplace_back(read(*fact));
        const auto isMissing = reading.value == Value();
        if (reading.failure || (isMissing && !options.all))
        {
            complain(std::string(fact->name) + ": " +
                     reading.failure.value_or("the platform does not have it"));
            isComplete = false;
        }
        if (!options.asJson && !reading.failure)
        {
            printValue(reading, options);
        }
    }
    if (options.asJson)
    {
        print(jsonOf(readings));
    }
    return isComplete ? complete : incomplete;
}

cli::Terms factTerms()
{
    cli::Terms terms;
    for (const auto& fact : facts())
    {
        terms.push_back({std::string(fact.name), std::string(fact.summary)});
    }
    return terms;
}

} // namespace

cli::Command factsCommand()
{
    return {.name = "facts",
            .meaning = "List the facts that \"get\" knows",
            .run = listFacts};
}

cli::Command getCommand()
{
    const auto options = std::make_shared<GetOptions>();
    const auto take = [options](const std::string& name) {
        options->facts.push_back(findFact(name));
    };
    return {
        .name = "get",
        .meaning = "Print facts",
        .parameters = {{.names = "FACT",
                        .meaning = "The facts to print",
                        .take = take,
                        .isRepeated = true,
                        .words = factTerms()},
                       cli::flag("--all", options->all,
                                 "Print all facts, - for what is missing"),
                       cli::flag("--json", options->asJson,
                                 "Print one JSON document instead of text"),
                       timeoutOption()},
        .run = [options] { return get(*options); },
    };
}

} // namespace morvath::tools
