// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "value.hpp"

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace morvath::tools
{

/** What the texts of a column are in JSON. */
enum class Form
{
    /** Texts as they are. */
    text,
    /** Texts, with "-" for none. */
    dashed,
    /** Numbers; anything else, such as "nan" and "-", is none. */
    number,
};

struct Column
{
    /** The name in JSON; published, never changed. */
    std::string key;
    /** The head of the column. */
    std::string title;
    Form form = Form::text;
};

using Cells = std::vector<Value>;

/** One table of the platform, from its name to its rows. */
struct Table
{
    std::string name;
    std::string summary;
    std::vector<Column> columns;
    /** Raises std::exception when the table cannot be read. */
    std::function<std::vector<Cells>()> read;
};

/** The library's code for a platform without the kind of thing, too. */
struct NotListed : std::runtime_error
{
    NotListed();
};

/** Raises what a status code of the library stands for, unless it is 0. */
void requireSuccess(int code);

/** A row as an object; null for what is missing and for what is no number. */
Value jsonRow(const std::vector<Column>& columns, const Cells& cells);

} // namespace morvath::tools
