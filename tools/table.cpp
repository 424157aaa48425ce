// SPDX-License-Identifier: Apache-2.0
#include "table.hpp"

#include <new>

namespace morvath::tools
{
namespace
{

constexpr auto none = "-";

Value jsonValue(const Value& cell, Form form)
{
    if (form == Form::text || !cell.is_string())
    {
        return cell;
    }
    const auto& text = cell.get_ref<const std::string&>();
    if (form == Form::number)
    {
        return numberIn(text);
    }
    return text == none ? Value() : cell;
}

} // namespace

NotListed::NotListed() :
    std::runtime_error("the platform does not answer, or has nothing of this "
                       "kind")
{}

void requireSuccess(int code)
{
    switch (code)
    {
        case 0:
            return;
        case -1:
            throw NotListed();
        case -2:
            throw std::bad_alloc();
        case -4:
            throw std::runtime_error("the RAID management library failed");
        default:
            throw std::runtime_error("the library reports code " +
                                     std::to_string(code));
    }
}

Value jsonRow(const std::vector<Column>& columns, const Cells& cells)
{
    auto row = Value::object();
    for (std::size_t column = 0; column < cells.size(); ++column)
    {
        const auto& [key, title, form] = columns[column];
        row[key] = jsonValue(cells[column], form);
    }
    return row;
}

} // namespace morvath::tools
