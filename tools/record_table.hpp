// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "table.hpp"

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <span>
#include <utility>
#include <vector>

namespace morvath::tools
{

/** The functions of the library for one kind of record. */
template <typename Record>
struct RecordAccess
{
    int32_t (*get)(Record**, int32_t*);
    void (*release)(Record*);
};

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

/** The records of one call; released whatever happens. */
template <typename Record>
class Records
{
  public:
    explicit Records(RecordAccess<Record> functions) : access(functions) {}
    Records(const Records&) = delete;
    Records& operator=(const Records&) = delete;
    ~Records()
    {
        for (auto& record : all())
        {
            access.release(&record);
        }
        std::free(records);
    }

    /** Raises what the library raises, and std::exception for its codes. */
    void read()
    {
        const auto code = access.get(&records, &count);
        if (code != 0)
        {
            // Outputs mean nothing then; an array may be released already.
            records = nullptr;
        }
        requireSuccess(code);
    }

    /** Only an array that was stored is counted. */
    std::span<Record> all() const
    {
        return {records, records ? static_cast<std::size_t>(count) : 0};
    }

  private:
    RecordAccess<Record> access;
    Record* records = nullptr;
    int32_t count = 0;
};

template <typename Record>
std::vector<Cells> readCells(RecordAccess<Record> access,
                             const std::vector<Field<Record>>& fields)
{
    Records<Record> records(access);
    records.read();
    std::vector<Cells> rows;
    for (const auto& record : records.all())
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
Table recordTable(std::string name, std::string summary,
                  RecordAccess<Record> access,
                  std::vector<Field<Record>> fields)
{
    std::vector<Column> columns;
    for (const auto& field : fields)
    {
        columns.push_back(field.column);
    }
    return {std::move(name), std::move(summary), std::move(columns),
            [access, fields = std::move(fields)] {
                return readCells(access, fields);
            }};
}

} // namespace morvath::tools
