// SPDX-License-Identifier: Apache-2.0
#include "cli/terminal_text.hpp"
#include "command.hpp"
#include "json.hpp"
#include "report.hpp"

#include <algorithm>
#include <memory>

namespace morvath::tools
{
namespace
{

struct Options
{
    std::vector<const Fact*> facts;
    /** Whatever there is: what the platform does not have is no failure. */
    bool all = false;
    bool asJson = false;
    std::optional<Seconds> timeout;
};

std::size_t nameWidth(const std::vector<const Fact*>& list)
{
    std::size_t width = 0;
    for (const auto* fact : list)
    {
        width = std::max(width, fact->name.size());
    }
    return width;
}

std::vector<const Fact*> allFacts()
{
    std::vector<const Fact*> list;
    for (const auto& fact : facts())
    {
        list.push_back(&fact);
    }
    return list;
}

int listFacts()
{
    const auto list = allFacts();
    const auto width = nameWidth(list);
    for (const auto* fact : list)
    {
        std::string line(fact->name);
        line.resize(width, ' ');
        line.append("  ").append(fact->summary);
        print(line.append(fact->write ? " (can be set)\n" : "\n"));
    }
    return complete;
}

/** A single value stands alone, for scripts; several have their names. */
void printValue(const FactReading& reading, const Options& options)
{
    if (reading.failure)
    {
        return;
    }
    std::string line;
    if (options.facts.size() > 1)
    {
        line.append(reading.fact->name).append(": ");
        line.resize(nameWidth(options.facts) + 2, ' ');
    }
    const auto show = reading.fact->show;
    line += cli::visible(show ? show(reading.value) : textOf(reading.value));
    print(line + '\n');
}

int get(Options& options)
{
    if (options.all == !options.facts.empty())
    {
        throw cli::Misuse(options.all ? "FACT excludes --all"
                                      : "FACT or --all is required");
    }
    if (options.all)
    {
        options.facts = allFacts();
    }
    useBus(options.timeout);
    std::vector<FactReading> readings;
    bool isComplete = true;
    for (const auto* fact : options.facts)
    {
        const auto& reading = readings.emplace_back(read(*fact));
        complainAbout(reading);
        const bool isMissing = !reading.failure && reading.value == Value();
        if (isMissing && !options.all)
        {
            complain(std::string(fact->name) +
                     ": the platform does not have it");
        }
        isComplete &= !reading.failure && (options.all || !isMissing);
        if (!options.asJson)
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
    const auto options = std::make_shared<Options>();
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
                       timeoutOption(options->timeout)},
        .run = [options] { return get(*options); },
    };
}

} // namespace morvath::tools
