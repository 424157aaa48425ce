// SPDX-License-Identifier: Apache-2.0
#include "show.hpp"

#include "document.hpp"
#include "text_table.hpp"

namespace morvath::tools
{
namespace
{

void printTable(const Table& table, const Outcome& outcome,
                const ShowOptions& options)
{
    const auto withTitles = options.output.withTitles;
    if (options.tables.size() > 1 && withTitles)
    {
        print((&table == options.tables.front() ? "" : "\n") + table.name +
              ":\n");
    }
    if (outcome.failure)
    {
        return;
    }
    for (const auto& line : textLines(table.columns, outcome.rows, withTitles))
    {
        print(line + '\n');
    }
}

} // namespace

bool show(const ShowOptions& options)
{
    Document document("tables");
    bool complete = true;
    for (const Table* table : options.tables)
    {
        const auto outcome =
            readTable(*table, options.output.timeout, options.absence);
        complete = complete && !outcome.failure;
        options.output.asJson
            ? document.add(table->name, jsonRows(*table, outcome.rows),
                           outcome.failure)
            : printTable(*table, outcome, options);
    }
    if (options.output.asJson)
    {
        print(document.inLines());
    }
    return complete;
}

} // namespace morvath::tools
