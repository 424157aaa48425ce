// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/record/masks.hpp"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace morvath::sim
{

/** Where masked texts stand inside others. */
class Occurrences
{
  public:
    Occurrences() = default;
    explicit Occurrences(const Masks& masks);

    struct Entry
    {
        enum class Place
        {
            anywhere,
            /** Not inside a run of letters and digits. */
            apart,
            /** Likewise, but only in the paths of objects. */
            inPath,
            /** As a word, but not in paths. */
            asWord,
        };

        std::string original;
        std::string mask;
        Place place;
    };

    /** The longest that begins at a place; nullptr without one. */
    const Entry* at(std::string_view text, std::size_t place,
                    bool isPath) const;

  private:
    void add(Entry entry);

    /** By their first characters, which all have. */
    std::unordered_map<std::string, std::vector<Entry>> entries_;
};

} // namespace morvath::sim
