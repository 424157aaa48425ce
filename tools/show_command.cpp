#include "catalogue.hpp"
#include "command.hpp"
#include "options.hpp"
#include "show.hpp"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace morvath::tools
{
namespace
{

std::string knownTables()
{
    constexpr std::size_t nameWidth = 20;
    std::string text = "Tables:\n";
    for (const auto& table : tables())
    {
        auto name = table.name;
        name.resize(std::max(nameWidth, name.size()), ' ');
        text += "  " + name + "  " + table.summary + '\n';
    }
    return text;
}

const Table* tableOf(const std::string& name)
{
    const auto* table = findTable(name);
    if (!table)
    {
        throw CLI::ValidationError("TABLE", "there is no table " + name);
    }
    return table;
}

/** On any platform some kind of thing is missing, which is no failure then. */
void chooseAll(ShowOptions& options)
{
    options.absence = Absence::emptyTable;
    for (const auto& table : tables())
    {
        options.tables.push_back(&table);
    }
}

} // namespace

void addShow(CLI::App& app, Action& chosen)
{
    auto* command = app.add_subcommand("show", "Print tables of the platform");
    const auto options = std::make_shared<ShowOptions>();
    command->callback([&chosen, options] {
        if (options->tables.empty())
        {
            throw CLI::RequiredError("TABLE or --all");
        }
        chosen = [options] { return show(*options); };
    });
    command->footer(knownTables());
    auto* names = command->add_option_function<std::vector<std::string>>(
        "TABLE",
        [options](const std::vector<std::string>& names) {
            std::ranges::transform(names, std::back_inserter(options->tables),
                                   tableOf);
        },
        "The tables to print");
    command
        ->add_flag_callback(
            "--all", [options] { chooseAll(*options); },
            "Print all tables, empty ones too")
        ->excludes(names);
    addOutputOptions(*command, options->output);
}

} // namespace morvath::tools
