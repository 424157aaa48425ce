// SPDX-License-Identifier: Apache-2.0
#include "sensors.hpp"

#include "catalogue.hpp"
#include "document.hpp"
#include "report.hpp"
#include "sensor_tables.hpp"
#include "text_table.hpp"
#include "watch.hpp"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <utility>

namespace morvath::tools
{
namespace
{

constexpr auto plain = "\x1b[0m";
constexpr std::pair<const char*, const char*> colours[]{
    {stateCritical, "\x1b[1;31m"},
    {stateWarning, "\x1b[33m"},
    {stateNoReading, "\x1b[2m"},
};

/** All classes as one table with the class as an additional first column. */
struct Overview
{
    explicit Overview(const std::vector<Column>& source) :
        columns{{"class", "CLASS"}}
    {
        std::ranges::copy_n(source.begin(), overviewColumns,
                            std::back_inserter(columns));
    }

    void add(const Table& table, const Outcome& outcome)
    {
        for (const auto& source : outcome.rows)
        {
            auto& row = rows.emplace_back(Cells{table.name});
            std::ranges::copy_n(source.begin(), overviewColumns,
                                std::back_inserter(row));
        }
    }

    std::vector<Column> columns;
    std::vector<Cells> rows;
};

bool wantsColour()
{
    return isatty(STDOUT_FILENO) && !std::getenv("NO_COLOR");
}

std::string coloured(const std::string& line, const Cells& row)
{
    for (const auto& [state, colour] : colours)
    {
        if (row[1 + stateColumn] == state)
        {
            return colour + line + plain;
        }
    }
    return line;
}

std::string textOf(const Overview& overview, bool withTitles)
{
    const auto inColour = wantsColour();
    const auto lines = textLines(overview.columns, overview.rows, withTitles);
    const std::size_t titles = withTitles ? 1 : 0;
    std::string text;
    for (std::size_t index = 0; index < lines.size(); ++index)
    {
        const auto paint = inColour && index >= titles;
        text += paint ? coloured(lines[index], overview.rows[index - titles])
                      : lines[index];
        text += '\n';
    }
    return text;
}

bool showOnce(const SensorOptions& options)
{
    const auto& [asJson, withTitles, timeout] = options.output;
    const auto tables = sensorTables();
    Document document("tables");
    Overview overview(tables.front().columns);
    bool complete = true;
    for (const auto& table : tables)
    {
        const auto outcome = readTable(table, timeout, Absence::emptyTable);
        complete = complete && !outcome.failure;
        asJson ? document.add(table.name, jsonRows(table, outcome.rows),
                              outcome.failure)
               : overview.add(table, outcome);
    }
    if (!asJson)
    {
        printWhole(textOf(overview, withTitles));
        return complete;
    }
    printWhole(options.watch ? document.inOneLine() : document.inLines());
    return complete;
}

} // namespace

bool showSensors(const SensorOptions& options)
{
    if (!options.watch)
    {
        return showOnce(options);
    }
    watch(*options.watch, [&options] { showOnce(options); });
    return false;
}

} // namespace morvath::tools
