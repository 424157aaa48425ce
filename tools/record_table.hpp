// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "table.hpp"

#include <morvath.hpp>

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace morvath::tools
{

/** A function of the library that stores records. */
template <typename Record>
using GetRecords = std::function<int32_t(Record**, int32_t*)>;

/** A column and how its cell comes from a record. */
template <typename Record>
struct Field
{
    /** A field of the record, in the form that its type asks for or another. */
    template <typename Member>
    Field(Column column, Member Record::*member,
          Value (*convert)(Member) = valueOf) :
        column(std::move(column)),
        read([=](const Record& record) { return convert(record.*member); })
    {}

    Field(Column column, Value (*read)(const Record&)) :
        column(std::move(column)),
        read(read)
    {}

    Column column;
    std::function<Value(const Record&)> read;
};

/** Raises what the library raises, and std::exception for its codes. */
template <typename Record>
std::vector<Cells> readCells(const GetRecords<Record>& get,
                             const std::vector<Field<Record>>& fields)
{
    Records<Record> records;
    requireSuccess(records.fill(get));
    std::vector<Cells> rows;
    for (const auto& record : records)
    {
        auto& cells = rows.emplace_back();
        for (const auto& field : fields)
        {
            cells.push_back(field.read(record));
        }
    }
    return rows;
}

template <typename Record>
Table recordTable(std::string name, std::string summary, GetRecords<Record> get,
                  std::vector<Field<Record>> fields)
{
    std::vector<Column> columns;
    for (const auto& field : fields)
    {
        columns.push_back(field.column);
    }
    return {std::move(name), std::move(summary), std::move(columns),
            [get = std::move(get), fields = std::move(fields)] {
                return readCells(get, fields);
            }};
}

} // namespace morvath::tools
