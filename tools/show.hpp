#pragma once

#include "connection.hpp"
#include "table.hpp"

#include <optional>
#include <vector>

namespace morvath::tools
{

struct ShowOptions
{
    std::vector<const Table*> tables;
    bool asJson = false;
    bool withTitles = true;
    std::optional<Timeout> timeout;
};

/** Prints the tables that can be read; whether those were all. */
bool show(const ShowOptions& options);

} // namespace morvath::tools
