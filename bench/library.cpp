// SPDX-License-Identifier: Apache-2.0
#include "client.hpp"
#include "morvath.h"

#include <algorithm>
#include <cstdlib>

namespace morvath::bench
{

Rows readWithLibrary()
{
    char*** table = nullptr;
    int32_t count = 0;
    getDbusTableData(root, interface, columns.data(), columns.size(), &table,
                     &count);
    Rows rows(count);
    for (int32_t index = 0; index < count; ++index)
    {
        std::copy_n(table[index], columns.size(), rows[index].begin());
        std::free(table[index]);
    }
    std::free(table);
    return rows;
}

Rows readTextWithLibrary()
{
    char* text = nullptr;
    getDbusPropertyString(service, firstObject, interface, textProperty, &text);
    return {Row{text}};
}

Rows readFlagWithLibrary()
{
    uint8_t flag = 0;
    getDbusPropertyBool(service, firstObject, interface, flagProperty, &flag);
    return {Row{textOf(uint64_t{flag})}};
}

} // namespace morvath::bench
