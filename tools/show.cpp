#include "show.hpp"

#include "text_table.hpp"

#include <cstdio>
#include <exception>
#include <string>

namespace morvath::tools
{
namespace
{

constexpr int formatVersion = 1;

/** A table's rows, or what went wrong. */
struct Outcome
{
    std::vector<Cells> rows;
    std::optional<std::string> failure;
};

Outcome readTable(const Table& table, const ShowOptions& options)
{
    try
    {
        useBus(options.timeout);
        return {table.read(), std::nullopt};
    }
    catch (const std::exception& error)
    {
        return {{}, error.what()};
    }
}

Value jsonRows(const Table& table, const std::vector<Cells>& rows)
{
    auto all = Value::array();
    for (const auto& row : rows)
    {
        auto object = Value::object();
        for (std::size_t column = 0; column < row.size(); ++column)
        {
            object[table.columns[column].key] = row[column];
        }
        all.push_back(std::move(object));
    }
    return all;
}

/** One document, whatever could be read; a failed table is null in it. */
void addToDocument(Value& document, const Table& table, const Outcome& outcome)
{
    auto& entry = document["tables"][table.name];
    if (outcome.failure)
    {
        document["errors"].push_back(
            {{"table", table.name}, {"message", *outcome.failure}});
        return;
    }
    entry = jsonRows(table, outcome.rows);
}

void print(const std::string& text)
{
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void printTable(const Table& table, const Outcome& outcome,
                const ShowOptions& options)
{
    if (options.tables.size() > 1 && options.withTitles)
    {
        print((&table == options.tables.front() ? "" : "\n") + table.name +
              ":\n");
    }
    if (!outcome.failure)
    {
        print(textTable(table.columns, outcome.rows, options.withTitles));
    }
}

void printDocument(const Value& document)
{
    // Not every source of texts keeps to UTF-8; the document does.
    constexpr auto strict = false;
    print(document.dump(2, ' ', strict, Value::error_handler_t::replace) +
          '\n');
}

} // namespace

bool show(const ShowOptions& options)
{
    Value document{{"formatVersion", formatVersion},
                   {"tables", Value::object()},
                   {"errors", Value::array()}};
    bool complete = true;
    for (const Table* table : options.tables)
    {
        const auto outcome = readTable(*table, options);
        if (outcome.failure)
        {
            complete = false;
            std::fprintf(stderr, "morvath: %s: %s\n", table->name.c_str(),
                         outcome.failure->c_str());
        }
        options.asJson ? addToDocument(document, *table, outcome)
                       : printTable(*table, outcome, options);
    }
    if (options.asJson)
    {
        printDocument(document);
    }
    return complete;
}

} // namespace morvath::tools
