// SPDX-License-Identifier: Apache-2.0
#include "catalogue.hpp"
#include "cli/suggest.hpp"
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

cli::Terms tableTerms()
{
    cli::Terms terms;
    for (const auto& table : tables())
    {
        terms.push_back({table.name, table.summary});
    }
    return terms;
}

const Table* tableOf(const std::string& name)
{
    const auto* table = findTable(name);
    if (!table)
    {
        throw CLI::ValidationError(cli::unknown("table", name, tableTerms()));
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

void addShow(cli::Program& program, Action& chosen)
{
    auto* command =
        program.app().add_subcommand("show", "Print tables of the platform");
    const auto options = std::make_shared<ShowOptions>();
    command->callback([&chosen, options] {
        if (options->tables.empty())
        {
            throw CLI::RequiredError("TABLE or --all");
        }
        chosen = [options] { return show(*options); };
    });
    auto* names = command->add_option_function<std::vector<std::string>>(
        "TABLE",
        [options](const std::vector<std::string>& names) {
            std::ranges::transform(names, std::back_inserter(options->tables),
                                   tableOf);
        },
        "The tables to print");
    program.offer(names, tableTerms());
    command
        ->add_flag_callback(
            "--all", [options] { chooseAll(*options); },
            "Print all tables, empty ones too")
        ->excludes(names);
    addOutputOptions(*command, options->output);
}

} // namespace morvath::tools
