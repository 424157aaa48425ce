// SPDX-License-Identifier: Apache-2.0
#include "tables/table.hpp"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace morvath
{

int32_t newRecords(int32_t count, std::size_t recordSize, void* outArray)
{
    void* records = count < 0 ? nullptr : std::calloc(count, recordSize);
    // As bytes: only the caller knows what the pointer points to.
    std::memcpy(outArray, &records, sizeof(records));
    return records || count == 0 ? success : outOfMemory;
}

void storeText(char*& field, std::string_view text)
{
    field = newText(text).release();
}

void store(char*& field, CText&& cell) { field = cell.release(); }

void store(int32_t& field, CText&& cell)
{
    field = std::stoi(required(cell.get()));
}

uint64_t unsignedNumber(const char* cell)
{
    return std::stoull(required(cell));
}

int32_t readRows(const Table& table, Rows& rows, int32_t* counter)
{
    std::vector<const char*> names(table.columns.size());
    std::ranges::transform(table.columns, names.begin(), &Column::property);
    return rows.read({table.root, table.interface, names}, counter);
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

void fillRecords(const Table& table, const Rows& rows, void* records,
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

int32_t getTable(const Table& table, void* outArray, int32_t* outCount,
                 std::size_t recordSize)
{
    Rows rows;
    if (const auto code = readRows(table, rows, outCount))
    {
        return code;
    }
    // The counter and not the number of rows gives the records.
    if (const auto code = newRecords(*outCount, recordSize, outArray))
    {
        return code;
    }
    void* records;
    std::memcpy(&records, outArray, sizeof(records));
    fillRecords(table, rows, records, recordSize, *outCount);
    return success;
}

} // namespace morvath
