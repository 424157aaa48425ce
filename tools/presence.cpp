// SPDX-License-Identifier: Apache-2.0
#include "presence.hpp"

#include "table.hpp"

#include <morvath.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <string_view>

namespace morvath::tools
{
namespace
{

constexpr auto everything = "/";

// No object has a property of this name; the library then gives the last
// segment of the object's path, because of how the name begins.
constexpr auto ownName = "NameOfTheObject";

/** Paths as the library hands them over. */
struct Paths
{
    char** texts = nullptr;
    uint32_t count = 0;

    Paths() = default;
    Paths(const Paths&) = delete;
    Paths& operator=(const Paths&) = delete;
    ~Paths()
    {
        std::for_each_n(texts, count, std::free);
        std::free(texts);
    }
};

/** Rows of two cells as the library hands them over. */
struct Rows
{
    char*** rows = nullptr;
    int32_t count = 0;

    Rows() = default;
    Rows(const Rows&) = delete;
    Rows& operator=(const Rows&) = delete;
    ~Rows()
    {
        std::for_each_n(rows, count, [](char** row) {
            std::free(row[0]);
            std::free(row[1]);
            std::free(row);
        });
        std::free(rows);
    }
};

bool isListed(const Source& source)
{
    Paths paths;
    requireSuccess(getDbusInterface(source.service, everything,
                                    source.interface, &paths.texts,
                                    &paths.count));
    const std::string_view wanted = source.path;
    return std::any_of(paths.texts, paths.texts + paths.count,
                       [&](std::string_view path) {
                           return wanted.empty() || path == wanted;
                       });
}

bool hasProperty(const Source& source)
{
    const std::string path = source.path;
    const auto slash = path.rfind('/');
    const auto parent = path.empty() ? everything : path.substr(0, slash);
    const auto name = path.empty() ? path : path.substr(slash + 1);
    const std::array columns{ownName, source.property};
    Rows rows;
    requireSuccess(getDbusTableData(parent.c_str(), source.interface,
                                    columns.data(), columns.size(), &rows.rows,
                                    &rows.count));
    return std::any_of(rows.rows, rows.rows + rows.count, [&](char** row) {
        return row[1] && (name.empty() || row[0] == name);
    });
}

} // namespace

bool isPublished(const Source& source)
{
    return isListed(source) && hasProperty(source);
}

} // namespace morvath::tools
