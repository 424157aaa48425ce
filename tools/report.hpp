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

/** One JSON document, whatever could be read; a failed table is null in it. */
class Document
{
  public:
    void add(const Table& table, const Outcome& outcome);

    /** The document in several lines for people, or in a single one. */
    std::string inLines() const;
    std::string inOneLine() const;

  private:
    Value document{{"formatVersion", 1},
                   {"tables", Value::object()},
                   {"errors", Value::array()}};
};

/** Writes a text to standard output. */
void print(const std::string& text);

} // namespace morvath::tools
