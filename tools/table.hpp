// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace morvath::tools
{

/** What is shown; monostate for what is missing. */
using Value = std::variant<std::monostate, bool, int64_t, std::string,
                           std::vector<std::string>>;

// From the fields of the library's records.
Value valueOf(char* text);
Value valueOf(int32_t number);
Value valueOf(uint32_t number);

/** Yes or no, for a field that is 1 or 0. */
Value yesOrNo(int32_t flag);

/** A value for people, as it came. */
std::string textOf(const Value& value);

/** What a column holds. */
enum class Form
{
    /** Texts as they are. */
    text,
    /** Texts, with "-" for none. */
    dashed,
    /** Numbers as texts; anything else, such as "nan" and "-", is none. */
    number,
    /** The units of the column before, with which people read them. */
    unit,
};

/** The number that a text is, as the library writes them. */
std::optional<double> numberIn(const std::string& text);

/** The sign of a unit, such as "°C" for "DegreesC". */
std::string signOf(const std::string& unit);

// How soon a column is left out where there is little room: the highest first,
// 0 never, and the last only shown if everything is wanted.
constexpr int always = 0;
constexpr int seldom = 9;

struct Column
{
    /** The name in JSON; published, never changed. */
    std::string key;
    /** The head of the column. */
    std::string title;
    Form form = Form::text;
    int rank = 1;
    /** What all its numbers count, such as "KiB". */
    std::string unit{};
};

using Cells = std::vector<Value>;

enum class Colour
{
    none,
    red,
    yellow,
    faint,
    bold,
};

/** One table of the platform, from its name to its rows. */
struct Table
{
    std::string name;
    std::string summary;
    std::vector<Column> columns;
    /** Raises std::exception when the table cannot be read. */
    std::function<std::vector<Cells>()> read;
    /** The colour of a row, if rows have any. */
    Colour (*colourOf)(const Cells&) = nullptr;
    /** Whether a record has so much to say that it is a paragraph. */
    bool asBlocks = false;
    /** Properties that a record needs; of the second only with the first. */
    std::vector<std::pair<std::string, std::string>> needs{};
};

/** All tables, in the order in which help and "--all" show them. */
const std::vector<Table>& tables();

// The tables by kind, of which all are made.
std::vector<Table> inventoryTables();
std::vector<Table> raidTables();
std::vector<Table> sensorTables();
std::vector<Table> networkTables();

/** The platform has nothing of a kind. */
struct Absent : std::exception
{
    const char* what() const noexcept override;
};

/** Raises what a status code of the library stands for, unless it is 0. */
void requireSuccess(int32_t code);

} // namespace morvath::tools
