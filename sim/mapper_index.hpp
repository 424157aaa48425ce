// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/object_tree.hpp"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace morvath::sim
{

/** Who publishes what where; all orders are byte orders. */
class MapperIndex
{
  public:
    using InterfaceNames = std::vector<std::string>;
    using Owners = std::map<std::string, InterfaceNames>;
    using Entry = std::pair<const std::string, Owners>;

    void add(const std::string& service, const ObjectTree& objects);

    bool contains(std::string_view path) const;

    /** The owners of a path; nullptr when there is no such path. */
    const Owners* find(std::string_view path) const;

    /**
     * The entries below a root that exists, "/" included in itself.
     * @param[in] depth  how many segments below the root; 0 and less: all
     */
    std::vector<const Entry*> below(std::string_view root,
                                    std::int32_t depth) const;

  private:
    std::map<std::string, Owners, std::less<>> entries_;
};

/** Whether an owner has one of the interfaces; an empty list asks for any. */
bool hasOneOf(const MapperIndex::InterfaceNames& interfaces,
              const std::vector<std::string_view>& wanted);

/** Whether any of the owners has. */
bool hasOneOf(const MapperIndex::Owners& owners,
              const std::vector<std::string_view>& wanted);

} // namespace morvath::sim
