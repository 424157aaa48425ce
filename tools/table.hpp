// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bus.hpp"

#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace morvath::tools
{

/** What is shown; monostate for what is missing. */
using Value = std::variant<std::monostate, bool, int64_t, std::string,
                           std::vector<std::string>>;
using Cells = std::vector<Value>;

/** A value for people, as it came. */
std::string textOf(const Value& value);

/** The number that a text is, as the library writes them. */
std::optional<double> numberIn(std::string_view text);

/** What a column holds. */
enum class Form
{
    /** Texts as they are. */
    text,
    /** Texts, with "-" for none. */
    dashed,
    /** Numbers as texts; anything else, such as "nan" and "-", is missing. */
    number,
    /** The units of the column before, with which people read them. */
    unit,
};

// How soon a column is left out where there is little room: the highest first,
// 0 never, and the last only shown if everything is wanted.
constexpr int always = 0;
constexpr int seldom = 9;

/** What a column is among the metrics. */
struct Published
{
    enum
    {
        unpublished,
        /** A label of all metrics of a row. */
        identity,
        /** A label of the metric that ends in "_info". */
        info,
        /** A metric; its factor comes from the column's unit. */
        gauge,
    } role = unpublished;
    /** Without one, the key with underscores. Published, never changed. */
    std::string_view name{};
    std::string_view help{};
};

struct Column
{
    /** The name in JSON; published, never changed. */
    std::string_view key;
    /** The head of the column. */
    std::string_view title;
    /** The cell of a record of the table. */
    Value (*read)(const void* record) = nullptr;
    int rank = 1;
    Published metric{};
    /** What all its numbers count, such as "KiB". */
    std::string_view unit{};
    Form form = Form::text;
};

using Columns = std::span<const Column>;

/** One table of the platform, from its name to its rows. */
struct Table
{
    std::string name;
    std::string summary;
    Columns columns;
    /** Raises std::exception when the table cannot be read. */
    std::vector<Cells> (*read)(const Table& table);
    /** What a row is among the metrics, and how their names begin. */
    std::string_view metric{};
    std::string_view help{};
    /**
     * The properties without which a record cannot be, with blanks between;
     * "a:b" for one that is needed only where there is b.
     */
    std::string_view needs{};
    /** Whether a record has so much to say that it is a paragraph. */
    bool asBlocks = false;
    /** Of sensors, where they are and how the metric of a reading ends. */
    std::string root{};
    std::string_view reading{};
};

/** All tables, in the order in which help and "--all" show them. */
const std::vector<Table>& tables();
const Table& tableNamed(std::string_view name);

/** The place of a column in a row. */
std::size_t columnOf(const Table& table, std::string_view key);

/** The tables of the usual six classes of sensors. */
std::vector<Table> sensorTables();

/** The platform has nothing of a kind. */
struct Absent : std::exception
{
    const char* what() const noexcept override;
};

/** Raises what a status code of the library stands for, unless it is 0. */
void requireSuccess(int32_t code);

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
    std::vector<Cells> rows{};
    std::vector<Failure> failures{};
    /** Whether nothing at all could be read. */
    bool isUnread = false;
};

/** What a kind of thing that the platform does not have counts as. */
enum class Absence
{
    failure,
    emptyTable,
};

/**
 * When a table fails, its objects are asked one by one.
 * @param[in] prepare  called before each of them; it may raise std::exception
 */
TableReading read(const Table& table, Absence absence,
                  const std::function<void()>& prepare = {});

/** What could not be read, and why. */
std::string textOf(const Failure& failure);

/** Says that on standard error. */
void complainAbout(const TableReading& reading);

/** Why the reading of something failed: what the bus says, or the error. */
std::string reasonOf(const std::exception& error);

} // namespace morvath::tools
