#include "report.hpp"

#include <cstdio>
#include <exception>

namespace morvath::tools
{
namespace
{

constexpr int oneLine = -1;

std::vector<Cells> readRows(const Table& table, Absence absence)
{
    try
    {
        return table.read();
    }
    catch (const NotListed&)
    {
        if (absence == Absence::emptyTable && platformAnswers())
        {
            return {};
        }
        throw;
    }
}

std::string dump(const Value& document, int indent)
{
    // Not every source of texts keeps to UTF-8; the document does.
    constexpr auto strict = false;
    return document.dump(indent, ' ', strict, Value::error_handler_t::replace) +
           '\n';
}

} // namespace

Outcome readTable(const Table& table, std::optional<Timeout> timeout,
                  Absence absence)
{
    try
    {
        useBus(timeout);
        return {readRows(table, absence), std::nullopt};
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "morvath: %s: %s\n", table.name.c_str(),
                     error.what());
        return {{}, error.what()};
    }
}

void Document::add(const Table& table, const Outcome& outcome)
{
    auto& entry = document["tables"][table.name];
    if (outcome.failure)
    {
        document["errors"].push_back(
            {{"table", table.name}, {"message", *outcome.failure}});
        return;
    }
    entry = Value::array();
    for (const auto& row : outcome.rows)
    {
        entry.push_back(jsonRow(table.columns, row));
    }
}

std::string Document::inLines() const
{
    constexpr int indent = 2;
    return dump(document, indent);
}

std::string Document::inOneLine() const
{
    return dump(document, oneLine);
}

void print(const std::string& text)
{
    std::fwrite(text.data(), 1, text.size(), stdout);
}

} // namespace morvath::tools
