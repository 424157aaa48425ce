// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/record/mask_forms.hpp"
#include "sim/record/mask_rules.hpp"

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace morvath::sim
{

/**
 * What stands for what in one recording. Everything is noted before the first
 * mask is given, so that no mask is the same as something that was there.
 */
class Masks
{
  public:
    void note(Form form, std::string_view text);

    /** A serial number or a name, which is then looked for elsewhere. */
    void noteText(std::string_view text, Treatment treatment);

    /** A text that must not become a mask. */
    void avoid(const std::string& text)
    {
        taken_.insert(text);
    }

    void assign();

    /** The text itself when it tells nothing. */
    std::string maskOf(Form form, std::string_view text) const;

    template <typename Action>
    void forEachText(const Action& action) const
    {
        for (const auto& [text, treatment] : treatments_)
        {
            action(text, maskOf(Form::none, text), treatment);
        }
    }

    /** The spellings that were met of what has a form. */
    const std::set<std::pair<Form, std::string>>& spellings() const
    {
        return spellings_;
    }

  private:
    std::map<std::pair<Form, std::string>, std::string> masks_;
    std::map<std::string, Treatment> treatments_;
    std::set<std::pair<Form, std::string>> spellings_;
    std::set<std::string> taken_;
};

} // namespace morvath::sim
