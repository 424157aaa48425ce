#pragma once

#include "value.hpp"

#include <functional>
#include <string>
#include <vector>

namespace morvath::tools
{

struct Column
{
    /** The name in JSON; published, never changed. */
    std::string key;
    /** The head of the column. */
    std::string title;
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

/** Raises what a status code of the library stands for, unless it is 0. */
void requireSuccess(int code);

} // namespace morvath::tools
