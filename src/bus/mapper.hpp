// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bus/message.hpp"

#include <cstdint>
#include <vector>

namespace morvath
{

/** A query of the object mapper for all that has the interface below root. */
Request mapperCall(const char* member, const char* root, const char* interface);

/** An object and the service that is asked about it. */
struct MappedObject
{
    const char* path;
    /** The first owner only, on purpose; "" for an object without owners. */
    const char* service;
};

/** What the object mapper lists; the texts stand in its reply. */
class ObjectList
{
  public:
    /** 0, or -1 with the list as it was when the query failed. */
    int32_t query(const char* root, const char* interface);

    /** The paths of those whose owner's name begins with prefix. */
    std::vector<const char*> ownedBy(const char* prefix) const;
    /** The first of them, or null. */
    const char* firstOwnedBy(const char* prefix) const
    {
        const auto paths = ownedBy(prefix);
        return paths.empty() ? nullptr : paths.front();
    }

    std::size_t size() const { return objects.size(); }
    auto begin() const { return objects.begin(); }
    auto end() const { return objects.end(); }

  private:
    sdbusplus::message_t reply;
    std::vector<MappedObject> objects;
};

} // namespace morvath
