// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "base/c_memory.hpp"
#include "base/texts.hpp"
#include "bus/rows.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string_view>

/*
 * From the rows of the table engine to an array of records. A table is its
 * query, its columns and, where a record needs more than its cells, a finish;
 * all tables share one compiled body, which knows records as memory only.
 */
namespace morvath
{

/**
 * Stores an array of zeroed records with the caller, whose it is from here on:
 * 0, or -2 and null when there is no memory, and for a count below 0. outArray
 * is the place of a pointer to a record.
 */
int32_t newRecords(int32_t count, std::size_t recordSize, void* outArray);

template <typename Record>
int32_t newRecords(int32_t count, Record** outArray)
{
    return newRecords(count, sizeof(Record), outArray);
}

/** A copy of the text, which is the record's. */
void storeText(char*& field, std::string_view text);

/** Releases the texts of a record and sets them to null. */
template <typename Record, typename... Texts>
void releaseFields(Record* record, Texts... texts)
{
    if (record)
    {
        ((std::free(record->*texts), record->*texts = nullptr), ...);
    }
}

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

/** The number in a cell, which has to be there. */
uint64_t unsignedNumber(const char* cell);

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

/** The place of a property in the columns, for a finish. */
consteval std::size_t cell(std::span<const Column> columns,
                           std::string_view property)
{
    std::size_t index = 0;
    while (columns[index].property != property)
    {
        ++index;
    }
    return index;
}

template <typename Record>
Record finishedBy(void (*)(Record&, Row));

/** A finish of one record type as the table's. */
template <auto Finish>
constexpr auto finishWith = [](void* record, Row row) {
    Finish(*static_cast<decltype(finishedBy(Finish))*>(record), row);
};

/** Runs the table's query; the engine's code. */
int32_t readRows(const Table& table, Rows& rows, int32_t* counter = nullptr);

/** Moves one row into a record. */
void fillRecord(const Table& table, Row row, void* record);

/** Moves the rows into the first records; further records stay zero. */
void fillRecords(const Table& table, const Rows& rows, void* records,
                 std::size_t recordSize, int32_t recordCount);

/** A whole table getter; outArray is the place of a pointer to a record. */
int32_t getTable(const Table& table, void* outArray, int32_t* outCount,
                 std::size_t recordSize);

template <typename Record>
int32_t getTable(const Table& table, Record** outArray, int32_t* outCount)
{
    return getTable(table, static_cast<void*>(outArray), outCount,
                    sizeof(Record));
}

} // namespace morvath
