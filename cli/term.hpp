// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/CLI.hpp>

#include <map>
#include <string>
#include <vector>

namespace morvath::cli
{

/** A word that a program uses or takes, and what it means. */
struct Term
{
    std::string name;
    std::string meaning;
};

using Terms = std::vector<Term>;

/** The words that options take, which CLI11 does not keep. */
using Choices = std::map<const CLI::Option*, Terms>;

} // namespace morvath::cli
