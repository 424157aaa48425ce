#pragma once

#include "table.hpp"

#include <cstdint>
#include <cstdlib>
#include <span>
#include <utility>
#include <variant>
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

template <typename Record>
struct Field
{
    Column column;
    std::variant<char * Record::*, int32_t Record::*> member;
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
        requireSuccess(access.get(&records, &count));
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

inline Value valueOf(const char* text)
{
    return text ? Value(text) : Value();
}

inline Value valueOf(int32_t number)
{
    return number;
}

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
            cells.push_back(
                std::visit([&](auto member) { return valueOf(record.*member); },
                           field.member));
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
