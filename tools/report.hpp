// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "connection.hpp"
#include "table.hpp"

#include <optional>
#include <string>
#include <vector>

namespace morvath::tools
{

/** A table's rows, or what went wrong. */
struct Outcome
{
    std::vector<Cells> rows;
    std::optional<std::string> failure;
};

/** What a kind of thing that the platform does not have counts as. */
enum class Absence
{
    failure,
    emptyTable,
};

/** Reads a table, and says on standard error when that fails. */
Outcome readTable(const Table& table, std::optional<Timeout> timeout,
                  Absence absence);

/** The rows as objects with the keys of the columns. */
Value jsonRows(const Table& table, const std::vector<Cells>& rows);

/** Writes a text to standard output. */
void print(const std::string& text);

} // namespace morvath::tools
