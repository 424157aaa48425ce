#pragma once

#include "table.hpp"

#include <string>
#include <vector>

namespace morvath::tools
{

/** Aligned columns, each as wide as its content, with a line of titles. */
std::string textTable(const std::vector<Column>& columns,
                      const std::vector<Cells>& rows, bool withTitles);

} // namespace morvath::tools
