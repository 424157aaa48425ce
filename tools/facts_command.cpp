// SPDX-License-Identifier: Apache-2.0
#include "command.hpp"
#include "facts.hpp"

#include <algorithm>
#include <cstdio>
#include <string>

namespace morvath::tools
{
namespace
{

bool listFacts()
{
    std::size_t width = 0;
    for (const auto& fact : facts())
    {
        width = std::max(width, fact.name.size());
    }
    for (const auto& fact : facts())
    {
        std::string line(fact.name);
        line.resize(width, ' ');
        line.append("  ").append(fact.summary);
        std::puts(line.append(fact.write ? " (can be set)" : "").c_str());
    }
    return true;
}

} // namespace

void addFacts(cli::Program& program, Action& chosen)
{
    program.app()
        .add_subcommand("facts", "List the facts that \"get\" knows")
        ->callback([&chosen] { chosen = listFacts; });
}

} // namespace morvath::tools
