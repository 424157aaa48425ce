// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "table.hpp"

#include <string>
#include <vector>

namespace morvath::tools
{

/** Aligned columns, each as wide as its content, after a line of titles. */
std::vector<std::string> textLines(const std::vector<Column>& columns,
                                   const std::vector<Cells>& rows,
                                   bool withTitles);

} // namespace morvath::tools
