// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/service.hpp"

#include <cstdint>
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

    using Names = std::vector<std::string>;
    /** From the names of services to those of interfaces, which are shared. */
    using Owners = std::map<std::string_view, const Names*>;
    using Index = std::map<std::string, Owners, std::less<>>;
    using Entries = std::vector<const Index::value_type*>;

  private:
    using Associations = std::map<std::string, std::set<std::string>>;

    static int onCall(sd_bus_message* call, void* self,
                      sd_bus_error* error) noexcept;

    void prepare() override;
    void answer(sd_bus_message* reply, std::string_view method,
                const Json& arguments) const;
    std::string_view known(std::string_view path) const;
    Entries below(std::string_view root, int32_t depth,
                  const Names& wanted) const;
    Entries above(std::string_view path, const Names& wanted) const;
    std::set<std::string> endpoints(const std::string& association) const;
    std::set<std::string> endpointsById(const Json& arguments) const;

    const Names* interned(const std::vector<Interface>& interfaces);
    Associations associations() const;
    void publish(const Associations& associations);
    void indexOwn();

    std::set<Names> names;
    Index index;
    /** The parents of its own objects, also of those that are gone. */
    std::set<std::string> ownParents;
    Associations present;
    Slot methods;
};

} // namespace morvath::sim
