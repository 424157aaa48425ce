// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/service.hpp"

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace morvath::sim
{

/** The service that knows where everything is. All orders are byte orders. */
class Mapper : public Service
{
  public:
    explicit Mapper(Services& services);

    /** Takes in what the living services publish now. */
    void update();

    using InterfaceNames = std::vector<std::string>;
    using Owners = std::map<std::string, InterfaceNames>;
    using Index = std::map<std::string, Owners, std::less<>>;
    using Entries = std::vector<const Index::value_type*>;
    using Wanted = std::vector<std::string>;

    /** @throws BusError  there is no such path, or no such owner */
    const Owners& object(std::string_view path, const Wanted& wanted) const;

    /**
     * What there is below a path.
     * @param[in] depth  how many segments below; 0 and less: all
     * @throws BusError  there is no such path
     */
    Entries subTree(std::string_view root, int32_t depth,
                    const Wanted& wanted) const;

    /** The nodes above a path. @throws BusError  there is no such path */
    Entries ancestors(std::string_view path, const Wanted& wanted) const;

    /** The entries that an association leads to. */
    Entries endpoints(const std::string& association, Entries entries) const;

  protected:
    void prepare() override;

  private:
    using Associations = std::map<std::string, std::set<std::string>>;

    void index(const Service& service);
    void indexOwn(const Associations& associations);
    Associations associations() const;
    void publish(const Associations& associations);

    Index entries;
    /** The parents of its own objects, also of those that are gone. */
    std::set<std::string> ownParents;
    Associations published;
    Slot methods;
};

} // namespace morvath::sim
