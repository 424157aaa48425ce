#pragma once

#include "morvath.h"

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

namespace morvath::tests
{

using Cell = std::optional<std::string>;
using Cells = std::vector<std::vector<Cell>>;

/** What the table engine stored, released as a caller would. */
class Rows
{
  public:
    explicit Rows(std::vector<const char*> columns) : names(columns) {}
    Rows(const Rows&) = delete;
    Rows& operator=(const Rows&) = delete;

    ~Rows()
    {
        for (int32_t row = 0; row < count; ++row)
        {
            for (std::size_t column = 0; column < names.size(); ++column)
            {
                std::free(rows[row][column]);
            }
            std::free(rows[row]);
        }
        std::free(rows);
    }

    int32_t read(const char* root, const char* interface)
    {
        return getDbusTableData(root, interface, names.data(),
                                static_cast<int32_t>(names.size()), &rows,
                                &count);
    }

    Cells cells() const
    {
        Cells all;
        for (int32_t row = 0; row < count; ++row)
        {
            auto& line = all.emplace_back();
            for (std::size_t column = 0; column < names.size(); ++column)
            {
                const char* cell = rows[row][column];
                line.push_back(cell ? Cell(cell) : std::nullopt);
            }
        }
        return all;
    }

    char*** rows = nullptr;
    int32_t count = 0;

  private:
    std::vector<const char*> names;
};

} // namespace morvath::tests
