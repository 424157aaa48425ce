// SPDX-License-Identifier: Apache-2.0
#include "command.hpp"
#include "facts.hpp"
#include "options.hpp"

#include <memory>
#include <stdexcept>
#include <string>

namespace morvath::tools
{
namespace
{

struct SetOptions
{
    std::string value;
    std::optional<Timeout> timeout;
};

bool setFact(const Fact& fact, const SetOptions& options)
{
    const std::string name(fact.name);
    try
    {
        useBus(options.timeout);
        writeFact(fact, options.value);
    }
    catch (const std::invalid_argument& error)
    {
        throw CLI::ValidationError(name, error.what());
    }
    catch (const std::exception& error)
    {
        throw std::runtime_error(name + ": " + error.what());
    }
    return true;
}

cli::Terms wordTerms(const Fact& fact)
{
    cli::Terms terms;
    for (const auto& word : fact.words)
    {
        terms.push_back({std::string(word.text), ""});
    }
    return terms;
}

void addFactSetting(cli::Program& program, CLI::App& setCommand,
                    const Fact& fact, Action& chosen)
{
    auto* command = setCommand.add_subcommand(std::string(fact.name),
                                              std::string(fact.summary));
    const auto options = std::make_shared<SetOptions>();
    command->callback([&chosen, &fact, options] {
        chosen = [&fact, options] { return setFact(fact, *options); };
    });
    const auto* value =
        command->add_option("VALUE", options->value, "The new value")
            ->required();
    if (!fact.words.empty())
    {
        program.offer(value, wordTerms(fact));
    }
    command->footer("VALUE is " + acceptedBy(fact) + '.');
    addTimeout(*command, options->timeout);
}

} // namespace

void addFactSettings(cli::Program& program, CLI::App& setCommand,
                     Action& chosen)
{
    for (const auto& fact : facts())
    {
        if (fact.write)
        {
            addFactSetting(program, setCommand, fact, chosen);
        }
    }
}

} // namespace morvath::tools
