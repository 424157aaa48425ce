// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/scenario.hpp"

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace morvath::sim
{

/** An object of one service, or a mere parent node on the way to one. */
struct Node
{
    bool isObject = false;
    std::vector<Interface> interfaces;
    std::set<std::string> children;

    const Interface* interface(std::string_view name) const;
    Property* property(std::string_view interface, std::string_view name);
};

/** Everything that one service publishes. */
class ObjectTree
{
  public:
    void add(const std::string& path, std::vector<Interface> interfaces);

    Node* find(std::string_view path);
    const Node* find(std::string_view path) const;

    const auto& nodes() const noexcept
    {
        return nodes_;
    }

    std::size_t objectCount() const noexcept
    {
        return objectCount_;
    }

  private:
    /** Lets a path be looked up without a copy of it. */
    struct Hash
    {
        using is_transparent = void;

        std::size_t operator()(std::string_view path) const noexcept
        {
            return std::hash<std::string_view>{}(path);
        }
    };

    void addParents(std::string_view path);

    std::unordered_map<std::string, Node, Hash, std::equal_to<>> nodes_;
    std::size_t objectCount_ = 0;
};

} // namespace morvath::sim
