// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "facts.hpp"

#include <string>
#include <vector>

namespace morvath::tools
{

// One document, whatever could be read; what failed as a whole is null in it.
std::string jsonOf(const std::vector<TableReading>& tables, bool inOneLine);
std::string jsonOf(const std::vector<FactReading>& facts);

/** Comma-separated values after a line with the keys of the columns. */
std::string csvOf(Columns columns, const std::vector<Cells>& rows,
                  bool withTitles);

/** The name of this machine. */
std::string hostName();

} // namespace morvath::tools
