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

void addFactSetting(CLI::App& setCommand, const Fact& fact, Action& chosen)
{
    auto* command = setCommand.add_subcommand(std::string(fact.name),
                                              std::string(fact.summary));
    const auto options = std::make_shared<SetOptions>();
    command->callback([&chosen, &fact, options] {
        chosen = [&fact, options] { return setFact(fact, *options); };
    });
    command->add_option("VALUE", options->value, "The new value")->required();
    command->footer("VALUE is " + std::string(fact.values) + '.');
    addTimeout(*command, options->timeout);
}

} // namespace

void addFactSettings(CLI::App& setCommand, Action& chosen)
{
    for (const auto& fact : facts())
    {
        if (fact.write)
        {
            addFactSetting(setCommand, fact, chosen);
        }
    }
}

} // namespace morvath::tools
