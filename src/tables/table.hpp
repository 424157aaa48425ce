// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bus/c_memory.hpp"
#include "bus/call.hpp"
#include "bus/records.hpp"
#include "bus/row_set.hpp"

#include <cstddef>
#include <cstdint>
#include <span>

/*
 * From the rows of the table engine to an array of records. A table is its
 * query, its columns and, where a record needs more than its cells, a finish;
 * all tables share one compiled body, which knows records as memory only.
 */
namespace morvath
{

/** A requested property and what becomes of its cell. */
struct Column
{
    const char* property;
    /** Null for a cell that is left to the table's finish. */
    void (*store)(void* record, CText&& cell) = nullptr;
};

struct Table
{
    const char* root;
    const char* interface;
    std::span<const Column> columns;
    /** Null, or what is done to a record when its cells are stored. */
    void (*finish)(void* record, Row row) = nullptr;
};

// Conversions of a cell into the field of a record. One that raises leaves the
// field as it was. They take the cell by reference, so that the code that
// releases it exists once and not in every column.
void store(char*& field, CText&& cell);
void store(int32_t& field, CText&& cell);

template <typename Record, typename Field>
Record recordOf(Field Record::*);

/** The conversion that the type of the field asks for. */
constexpr auto byType = [](auto& field, CText&& cell) {
    store(field, std::move(cell));
};

/** A column whose cell goes into the field, through a conversion. */
template <auto Field, auto Convert = byType>
constexpr Column column(const char* property)
{
    using Record = decltype(recordOf(Field));
    return {property, [](void* record, CText&& cell) {
                Convert(static_cast<Record*>(record)->*Field, std::move(cell));
            }};
}

template <typename Record>
Record finishedBy(void (*)(Record&, Row));

/** A finish of one record type as the table's. */
template <auto Finish>
constexpr auto finishWith = [](void* record, Row row) {
    Finish(*static_cast<decltype(finishedBy(Finish))*>(record), row);
};

/** Runs the table's query; the engine's code. */
int32_t readRows(const Table& table, RowSet& rows);

/** Moves one row into a record. */
void fillRecord(const Table& table, Row row, void* record);

/** Moves the rows into the first records; further records stay zero. */
void fillRecords(const Table& table, const RowSet& rows, void* records,
                 std::size_t recordSize, int32_t recordCount);

/** A whole table getter. */
template <typename Record>
int32_t getTable(const Table& table, Record** outArray, int32_t* outCount)
{
    RowSet rows(*outCount);
    if (const auto code = readRows(table, rows))
    {
        return code;
    }
    // The counter and not the number of rows gives the records, and the array
    // is the caller's from here on, also when a conversion raises.
    *outArray =
        static_cast<Record*>(allocateRecords(*outCount, sizeof(Record)));
    if (!*outArray && *outCount != 0)
    {
        return outOfMemory;
    }
    fillRecords(table, rows, *outArray, sizeof(Record), *outCount);
    return success;
}

} // namespace morvath
