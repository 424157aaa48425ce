// SPDX-License-Identifier: Apache-2.0
#include "report.hpp"

#include <cstdio>
#include <exception>

namespace morvath::tools
{
namespace
{

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

Value jsonRows(const Table& table, const std::vector<Cells>& rows)
{
    auto all = Value::array();
    for (const auto& row : rows)
    {
        all.push_back(jsonRow(table.columns, row));
    }
    return all;
}

void print(const std::string& text)
{
    std::fwrite(text.data(), 1, text.size(), stdout);
}

} // namespace morvath::tools
