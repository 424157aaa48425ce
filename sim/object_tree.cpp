// SPDX-License-Identifier: Apache-2.0
#include "sim/object_tree.hpp"

#include <algorithm>
#include <utility>

namespace morvath::sim
{

namespace
{

template <typename Items>
auto findNamed(Items& items, std::string_view name)
{
    const auto found =
        std::find_if(items.begin(), items.end(),
                     [&](const auto& item) { return item.name == name; });
    return found == items.end() ? nullptr : &*found;
}

} // namespace

const Interface* Node::interface(std::string_view name) const
{
    return findNamed(interfaces, name);
}

Property* Node::property(std::string_view interface, std::string_view name)
{
    Interface* found = findNamed(interfaces, interface);
    return found == nullptr ? nullptr : findNamed(found->properties, name);
}

void ObjectTree::add(const std::string& path, std::vector<Interface> interfaces)
{
    Node& node = nodes_[path];
    node.isObject = true;
    node.interfaces = std::move(interfaces);
    objectCount_++;
    addParents(path);
}

void ObjectTree::addParents(std::string_view path)
{
    while (path != "/")
    {
        const std::size_t slash = path.rfind('/');
        const std::string_view parent =
            slash == 0 ? std::string_view("/") : path.substr(0, slash);
        Node& node = nodes_[std::string(parent)];
        node.children.emplace(path.substr(slash + 1));
        path = parent;
    }
}

Node* ObjectTree::find(std::string_view path)
{
    const auto found = nodes_.find(path);
    return found == nodes_.end() ? nullptr : &found->second;
}

const Node* ObjectTree::find(std::string_view path) const
{
    const auto found = nodes_.find(path);
    return found == nodes_.end() ? nullptr : &found->second;
}

} // namespace morvath::sim
