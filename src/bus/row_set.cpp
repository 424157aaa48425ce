// SPDX-License-Identifier: Apache-2.0
#include "bus/row_set.hpp"

#include "morvath.h"

namespace morvath
{

RowSet::~RowSet()
{
    for (std::size_t index = 0; index < size(); ++index)
    {
        releaseTexts(rows[index], columns);
    }
    std::free(rows);
}

int32_t RowSet::read(const TableQuery& query)
{
    columns = query.properties.size();
    return getDbusTableData(query.root, query.interface,
                            query.properties.data(),
                            static_cast<int32_t>(columns), &rows, &counter);
}

} // namespace morvath
