// SPDX-License-Identifier: Apache-2.0
#include "sim/mapper_index.hpp"

#include "sim/request.hpp"

#include <algorithm>

namespace morvath::sim
{

namespace
{

MapperIndex::InterfaceNames interfaceNames(const Node& node)
{
    MapperIndex::InterfaceNames names(standardInterfaces.begin(),
                                      standardInterfaces.end());
    for (const Interface& interface : node.interfaces)
    {
        names.push_back(interface.name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace

void MapperIndex::add(const std::string& service, const ObjectTree& objects)
{
    // The bus's own services are no part of the platform.
    if (service.starts_with("org.freedesktop."))
    {
        return;
    }
    for (const auto& [path, node] : objects.nodes())
    {
        entries_[path][service] = interfaceNames(node);
    }
}

bool MapperIndex::contains(std::string_view path) const
{
    return entries_.contains(path);
}

const MapperIndex::Owners* MapperIndex::find(std::string_view path) const
{
    const auto found = entries_.find(path);
    return found == entries_.end() ? nullptr : &found->second;
}

std::vector<const MapperIndex::Entry*>
MapperIndex::below(std::string_view root, std::int32_t depth) const
{
    // Every character of a path sorts after the slash, so a subtree is one
    // run of entries, and a name that only begins alike is no part of it.
    const std::string prefix = root == "/" ? "/" : std::string(root) + "/";
    std::vector<const Entry*> found;
    for (auto entry = entries_.lower_bound(prefix);
         entry != entries_.end() && entry->first.starts_with(prefix); ++entry)
    {
        const std::string_view rest =
            std::string_view(entry->first).substr(prefix.size());
        const auto segments = std::count(rest.begin(), rest.end(), '/') + 1;
        if (depth <= 0 || segments <= depth)
        {
            found.push_back(&*entry);
        }
    }
    return found;
}

bool hasOneOf(const MapperIndex::InterfaceNames& interfaces,
              const std::vector<std::string_view>& wanted)
{
    const auto isListed = [&](std::string_view name) {
        return std::binary_search(interfaces.begin(), interfaces.end(), name);
    };
    return wanted.empty() ||
           std::any_of(wanted.begin(), wanted.end(), isListed);
}

bool hasOneOf(const MapperIndex::Owners& owners,
              const std::vector<std::string_view>& wanted)
{
    return std::any_of(owners.begin(), owners.end(), [&](const auto& owner) {
        return hasOneOf(owner.second, wanted);
    });
}

} // namespace morvath::sim
