// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "table.hpp"

#include <morvath.hpp>

namespace morvath::tools
{

// From the fields of the library's records.
inline Value valueOf(const char* text) { return text ? Value(text) : Value(); }
inline Value valueOf(int64_t number) { return number; }

template <typename Record, typename Member>
Record recordOf(Member Record::*);

/** A field of a record in the form that its type asks for. */
template <auto Member>
Value of(const void* record)
{
    using Record = decltype(recordOf(Member));
    return valueOf(static_cast<const Record*>(record)->*Member);
}

/** A field that is 1 or 0. */
template <auto Member>
Value yesOrNo(const void* record)
{
    return of<Member>(record) != Value(int64_t{0});
}

/** Raises what the library raises, and std::exception for its codes. */
template <typename Record, typename Get>
std::vector<Cells> rowsOf(const Table& table, const Get& get)
{
    Records<Record> records;
    requireSuccess(records.fill(get));
    std::vector<Cells> rows(records.size());
    for (std::size_t row = 0; row < rows.size(); ++row)
    {
        for (const auto& column : table.columns)
        {
            rows[row].push_back(column.read(&records[row]));
        }
    }
    return rows;
}

} // namespace morvath::tools
