// SPDX-License-Identifier: Apache-2.0
#include "sim/record/masks.hpp"

#include <algorithm>
#include <cstdint>

namespace morvath::sim
{

void Masks::note(Form form, std::string_view text)
{
    const FormRule& rule = formRule(form);
    std::string key = rule.key(text);
    taken_.insert(key);
    if (!rule.isKept(key))
    {
        masks_.emplace(std::pair(form, std::move(key)), "");
        spellings_.emplace(form, text);
    }
}

void Masks::noteText(std::string_view text, Treatment treatment)
{
    note(Form::none, text);
    if (!isPlaceholder(text))
    {
        // What is a serial number anywhere is one wherever it stands.
        const auto [place, isNew] = treatments_.emplace(text, treatment);
        place->second = std::min(place->second, treatment);
    }
}

void Masks::assign()
{
    // Counted for each shape, so that as few masks as possible are tried.
    std::map<std::pair<Form, std::string>, std::uint64_t> counts;
    for (auto& [place, mask] : masks_)
    {
        const auto& [form, key] = place;
        const FormRule& rule = formRule(form);
        std::uint64_t& count = counts[{form, rule.mask(0, key)}];
        do
        {
            mask = rule.mask(count++, key);
        } while (!taken_.insert(mask).second);
    }
}

std::string Masks::maskOf(Form form, std::string_view text) const
{
    const FormRule& rule = formRule(form);
    const auto found = masks_.find({form, rule.key(text)});
    return found == masks_.end() ? std::string(text)
                                 : rule.spelt(found->second, text);
}

} // namespace morvath::sim
