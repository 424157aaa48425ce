// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bus.hpp"
#include "facts.hpp"
#include "screen.hpp"
#include "table.hpp"

#include <optional>
#include <string>
#include <vector>

namespace morvath::tools
{

/** What could not be read; an object without a path is the whole. */
struct Failure
{
    Object object;
    std::string message;
};

/** A table's rows, and what is missing among them. */
struct TableReading
{
    const Table* table;
    std::vector<Cells> rows;
    std::vector<Failure> failures;
    /** Whether nothing at all could be read. */
    bool isUnread = false;
};

/** A fact's value, or what went wrong. */
struct FactReading
{
    const Fact* fact;
    Value value;
    std::optional<std::string> failure;
};

/** What a kind of thing that the platform does not have counts as. */
enum class Absence
{
    failure,
    emptyTable,
};

/** When a table fails, its objects are asked one by one. */
TableReading read(const Table& table, Absence absence);
FactReading read(const Fact& fact);

/** A failure with the table and, if it is one object's, the object. */
std::string textOf(const TableReading& reading, const Failure& failure);

// They say on standard error what could not be read.
void complainAbout(const TableReading& reading);
void complainAbout(const FactReading& reading);

/** The name of this machine. */
std::string hostName();

} // namespace morvath::tools
