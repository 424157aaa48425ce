// SPDX-License-Identifier: Apache-2.0
#include "tables/table.hpp"

#include <algorithm>
#include <string>
#include <vector>

namespace morvath
{

void store(char*& field, CText&& cell)
{
    field = cell.release();
}

void store(int32_t& field, CText&& cell)
{
    // Making a text of a null cell raises, and so does what is no number.
    field = std::stoi(cell.get());
}

int32_t readRows(const Table& table, RowSet& rows)
{
    std::vector<const char*> names(table.columns.size());
    std::ranges::transform(table.columns, names.begin(), &Column::property);
    return rows.read({table.root, table.interface, names});
}

void fillRecord(const Table& table, Row row, void* record)
{
    for (std::size_t index = 0; index < table.columns.size(); ++index)
    {
        if (const auto store = table.columns[index].store)
        {
            store(record, row.take(index));
        }
    }
    if (table.finish)
    {
        table.finish(record, row);
    }
}

void fillRecords(const Table& table, const RowSet& rows, void* records,
                 std::size_t recordSize, int32_t recordCount)
{
    auto* record = static_cast<std::byte*>(records);
    const auto count = std::min<std::size_t>(rows.size(), recordCount);
    for (std::size_t index = 0; index < count; ++index)
    {
        fillRecord(table, rows[index], record);
        record += recordSize;
    }
}

} // namespace morvath
