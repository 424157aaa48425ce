// SPDX-License-Identifier: Apache-2.0
#include "sim/record/occurrences.hpp"

#include "sim/record/characters.hpp"

#include <algorithm>

namespace morvath::sim
{

// What is shorter stands in other texts by chance.
constexpr std::size_t shortest = 4;
constexpr std::size_t unmistakable = 8;

namespace
{

/** How a name is often made part of a path. */
std::string pathSpelling(std::string text)
{
    std::ranges::replace_if(
        text, [](char character) { return !isAlphanumeric(character); }, '_');
    return text;
}

std::string withoutSeparators(std::string text)
{
    std::erase_if(text,
                  [](char character) { return !isAlphanumeric(character); });
    return text;
}

bool isApart(std::string_view text, std::size_t place, std::size_t length,
             bool isWord)
{
    const auto joins = [&](char character) {
        return isAlphanumeric(character) || (isWord && character == '_');
    };
    const std::size_t end = place + length;
    return (place == 0 || !joins(text[place - 1])) &&
           (end == text.size() || !joins(text[end]));
}

bool fits(const Occurrences::Entry& entry, std::string_view text,
          std::size_t place, bool isPath)
{
    using Place = Occurrences::Entry::Place;
    const std::size_t length = entry.original.size();
    switch (entry.place)
    {
        case Place::anywhere:
            return true;
        case Place::apart:
            return isApart(text, place, length, false);
        case Place::inPath:
            return isPath && isApart(text, place, length, false);
        case Place::asWord:
            return !isPath && isApart(text, place, length, true);
    }
    return false;
}

} // namespace

Occurrences::Occurrences(const Masks& masks)
{
    using Place = Entry::Place;
    masks.forEachText([&](const std::string& text, const std::string& mask,
                          Treatment treatment) {
        const Place place = treatment != Treatment::everywhere ? Place::asWord
                            : text.size() < unmistakable       ? Place::apart
                                                         : Place::anywhere;
        add({text, mask, place});
        if (place != Place::asWord)
        {
            add({pathSpelling(text), pathSpelling(mask), Place::inPath});
        }
    });
    for (const auto& [form, text] : masks.spellings())
    {
        const std::string mask = masks.maskOf(form, text);
        add({pathSpelling(text), pathSpelling(mask), Place::inPath});
        if (form == Form::mac || form == Form::uuid)
        {
            add({withoutSeparators(text), withoutSeparators(mask),
                 Place::anywhere});
        }
    }
    for (auto& [start, entries] : entries_)
    {
        std::ranges::stable_sort(
            entries, std::ranges::greater{},
            [](const Entry& entry) { return entry.original.size(); });
    }
}

void Occurrences::add(Entry entry)
{
    if (entry.original.size() >= shortest)
    {
        entries_[entry.original.substr(0, shortest)].push_back(
            std::move(entry));
    }
}

const Occurrences::Entry* Occurrences::at(std::string_view text,
                                          std::size_t place, bool isPath) const
{
    const std::string_view rest = text.substr(place);
    if (entries_.empty() || rest.size() < shortest)
    {
        return nullptr;
    }
    const auto candidates =
        entries_.find(std::string(rest.substr(0, shortest)));
    if (candidates == entries_.end())
    {
        return nullptr;
    }
    const auto found =
        std::ranges::find_if(candidates->second, [&](const Entry& entry) {
            return rest.starts_with(entry.original) &&
                   fits(entry, text, place, isPath);
        });
    return found == candidates->second.end() ? nullptr : &*found;
}

} // namespace morvath::sim
