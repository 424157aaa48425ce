// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "base/c_memory.hpp"
#include "bus/message.hpp"

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace morvath
{

/** The text of a table cell; empty for what is not rendered. */
CText renderPropertyValue(const BasicValue& value);

/** One query of the table engine. */
struct TableQuery
{
    const char* root;
    const char* interface;
    std::span<const char* const> properties;
};

/** The cells of one row; those that nobody takes stay with the rows. */
struct Row
{
    char** cells;

    const char* operator[](std::size_t column) const { return cells[column]; }

    CText take(std::size_t column)
    {
        return CText(std::exchange(cells[column], nullptr));
    }
};

/**
 * The table engine: a row per object, in the order of the object mapper. Rows
 * are released with their remaining cells.
 */
class Rows
{
  public:
    Rows() = default;
    Rows(Rows&& other) noexcept :
        rows(std::exchange(other.rows, nullptr)),
        columns(other.columns),
        count(std::exchange(other.count, 0))
    {}
    Rows& operator=(const Rows&) = delete;
    ~Rows();

    /**
     * Replaces no rows: for an empty one. 0, or -1 when the objects cannot be
     * listed. An object that cannot be read raises; the rows before it are
     * there. A complete row is counted in the counter, too, at once.
     */
    int32_t read(const TableQuery& query, int32_t* counter = nullptr);

    std::size_t size() const { return count; }

    Row operator[](std::size_t index) const { return {rows[index]}; }

    /** Hands all to the caller, as getDbusTableData() documents it. */
    char*** release()
    {
        count = 0;
        return std::exchange(rows, nullptr);
    }

  private:
    char*** rows = nullptr;
    std::size_t columns = 0;
    std::size_t count = 0;
};

} // namespace morvath
