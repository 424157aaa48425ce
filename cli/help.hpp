// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "cli/term.hpp"

namespace morvath::cli
{

/** Help within 80 columns, with the words that arguments take. */
class Help : public CLI::Formatter
{
  public:
    explicit Help(const Choices& choices);

    std::string make_option_opts(const CLI::Option* option) const override;
    std::string make_footer(const CLI::App* app) const override;

  private:
    const Choices& choices_;
};

/** The name of the value that an option takes; empty for a flag. */
std::string valueName(const CLI::Option& option);

/** Terms below a title, with their meanings in one column. */
std::string listOf(const std::string& title, const Terms& terms);

} // namespace morvath::cli
