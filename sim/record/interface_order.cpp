// SPDX-License-Identifier: Apache-2.0
#include "sim/record/interface_order.hpp"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace morvath::sim
{

namespace
{

/** What one interface contributes to the answer. */
struct Block
{
    std::string interface;
    /** The type and the value of each property by its name. */
    std::vector<std::pair<std::string, Json>> properties;

    bool isAt(const Json& together, std::size_t place) const
    {
        return place + properties.size() <= together.size() &&
               agrees(together, place, [](const auto& own, const Json& other) {
                   return own.first == other[0];
               });
    }

    /** Values may have changed since, so they only break a tie. */
    auto rank(const Json& together, std::size_t place) const
    {
        const bool isSame =
            agrees(together, place, [](const auto& own, const Json& other) {
                return own.second == other[1];
            });
        return std::pair(properties.size(), isSame);
    }

  private:
    template <typename Equal>
    bool agrees(const Json& together, std::size_t place,
                const Equal& equal) const
    {
        return std::equal(properties.begin(), properties.end(),
                          together.begin() + static_cast<std::ptrdiff_t>(place),
                          equal);
    }
};

std::vector<Block> blocksOf(const Json& interfaces)
{
    std::vector<Block> blocks;
    for (const auto& [interface, properties] : interfaces.items())
    {
        Block block{interface, {}};
        for (const auto& [name, property] : properties.items())
        {
            if (!property.contains("hidden"))
            {
                block.properties.emplace_back(
                    name, Json{{"type", property["type"]},
                               {"value", property["value"]}});
            }
        }
        if (!block.properties.empty())
        {
            blocks.push_back(std::move(block));
        }
    }
    return blocks;
}

/** The best block at a place; none when the answer tells nothing. */
auto bestAt(std::vector<Block>& blocks, const Json& together, std::size_t place)
{
    auto best = blocks.end();
    for (auto block = blocks.begin(); block != blocks.end(); ++block)
    {
        if (block->isAt(together, place) &&
            (best == blocks.end() ||
             block->rank(together, place) > best->rank(together, place)))
        {
            best = block;
        }
    }
    return best;
}

} // namespace

Json inRegistrationOrder(const Json& interfaces, const Json& together)
{
    std::vector<Block> blocks = blocksOf(interfaces);
    std::vector<std::string> lastFirst;
    for (std::size_t place = 0; place < together.size();)
    {
        const auto best = bestAt(blocks, together, place);
        if (best == blocks.end())
        {
            return interfaces;
        }
        lastFirst.push_back(best->interface);
        place += best->properties.size();
        blocks.erase(best);
    }
    // Where those without properties stood does not show.
    Json ordered = interfaces;
    for (const std::string& interface : lastFirst)
    {
        ordered.erase(interface);
    }
    std::for_each(lastFirst.rbegin(), lastFirst.rend(),
                  [&](const std::string& interface) {
                      ordered[interface] = interfaces[interface];
                  });
    return ordered;
}

} // namespace morvath::sim
