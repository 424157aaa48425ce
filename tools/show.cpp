// SPDX-License-Identifier: Apache-2.0
#include "command.hpp"
#include "sensors.hpp"

#include <memory>
#include <utility>

namespace morvath::tools
{
namespace
{

struct ShowOptions
{
    std::vector<const Table*> tables;
    bool all = false;
    Look look;
};

cli::Terms tableTerms()
{
    cli::Terms terms;
    for (const auto& table : tables())
    {
        terms.push_back({table.name, table.summary});
    }
    return terms;
}

std::string titleOf(const Table& table, const ShowOptions& options)
{
    if (options.tables.size() < 2 || !options.look.withTitles)
    {
        return {};
    }
    return (&table == options.tables.front() ? "" : "\n") +
           coloured(table.name + ':', Colour::bold, options.look) + '\n';
}

Colour sensorColour(const Cells& cells) { return colourOf(stateOf(cells)); }

Texts linesOf(const TableReading& reading, const Look& look)
{
    const auto& table = *reading.table;
    const auto rows = inNaturalOrder(reading.rows);
    return table.asBlocks
               ? blockLines(table.columns, rows)
               : textLines(table.columns, rows, look,
                           table.root.empty() ? nullptr : sensorColour);
}

void choose(ShowOptions& options)
{
    if (options.all == !options.tables.empty())
    {
        throw cli::Misuse(options.all ? "TABLE excludes --all"
                                      : "TABLE or --all is required");
    }
    if (options.all)
    {
        for (const auto& table : tables())
        {
            options.tables.push_back(&table);
        }
    }
}

int show(ShowOptions& options)
{
    choose(options);
    auto& look = options.look;
    look.measure();
    if (look.asCsv && options.tables.size() > 1)
    {
        throw cli::Misuse("--csv takes one table");
    }
    useBus();
    // On any platform some kind of thing is missing, which is not a failure if
    // nobody asked for it.
    const auto absence = options.all ? Absence::emptyTable : Absence::failure;
    std::vector<TableReading> readings;
    bool isComplete = true;
    for (const Table* table : options.tables)
    {
        if (!look.asJson && !look.asCsv)
        {
            print(titleOf(*table, options));
        }
        auto reading = read(*table, absence);
        isComplete = isComplete && reading.failures.empty();
        complainAbout(reading);
        if (look.asJson)
        {
            readings.push_back(std::move(reading));
        }
        else if (!reading.isUnread)
        {
            print(look.asCsv
                      ? csvOf(table->columns, reading.rows, look.withTitles)
                      : textOf(linesOf(reading, look)));
        }
    }
    if (look.asJson)
    {
        print(jsonOf(readings, false));
    }
    return isComplete ? complete : incomplete;
}

} // namespace

cli::Command showCommand()
{
    const auto options = std::make_shared<ShowOptions>();
    const auto take = [options](const std::string& name) {
        options->tables.push_back(&tableNamed(name));
    };
    std::vector<cli::Parameter> parameters{
        {.names = "TABLE",
         .meaning = "The tables to print",
         .take = take,
         .isRepeated = true,
         .words = tableTerms()},
        cli::flag("--all", options->all, "Print all tables, empty ones too")};
    addOptions(parameters, options->look);
    parameters.push_back(timeoutOption());
    return {
        .name = "show",
        .meaning = "Print tables of the platform",
        .parameters = std::move(parameters),
        .run = [options] { return show(*options); },
    };
}

} // namespace morvath::tools
