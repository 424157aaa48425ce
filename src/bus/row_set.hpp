// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bus/c_memory.hpp"

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace morvath
{

/** One query of the table engine. */
struct TableQuery
{
    const char* root;
    const char* interface;
    std::span<const char* const> properties;
};

/** The cells of one row; those that nobody takes stay with the RowSet. */
class Row
{
  public:
    explicit Row(char** row) : cells(row) {}

    const char* operator[](std::size_t column) const
    {
        return cells[column];
    }

    CText take(std::size_t column)
    {
        return CText(std::exchange(cells[column], nullptr));
    }

  private:
    char** cells;
};

/**
 * The rows of one query, counted by the engine in the caller's counter. They
 * are released with their remaining cells, also when the engine or a
 * conversion raises half-way.
 */
class RowSet
{
  public:
    /** The counter must outlive this and be left alone. */
    explicit RowSet(int32_t& counter) : counter(counter), before(counter) {}
    RowSet(const RowSet&) = delete;
    RowSet& operator=(const RowSet&) = delete;
    ~RowSet();

    /** The engine's code. */
    int32_t read(const TableQuery& query);

    /** What the engine added, whatever the counter held before. */
    std::size_t size() const
    {
        return static_cast<uint32_t>(counter) - static_cast<uint32_t>(before);
    }

    Row operator[](std::size_t index) const
    {
        return Row(rows[index]);
    }

  private:
    int32_t& counter;
    const int32_t before;
    char*** rows = nullptr;
    std::size_t columns = 0;
};

} // namespace morvath
