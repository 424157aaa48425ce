// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/service.hpp"

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace morvath::sim
{

/** The service that knows where everything is. All orders are byte orders. */
class Mapper : public Service
{
  public:
    explicit Mapper(Services& services) : Service(services, mapperService) {}

    /** Takes in what the living services publish now. */
    void update();

    /** Sorted. */
    using Names = std::vector<std::string>;
    /** From the names of services to those of interfaces, which are shared. */
    using Owners = std::map<std::string_view, const Names*>;

  private:
    using Paths = std::set<std::string>;
    using Index = std::map<std::string, Owners, std::less<>>;

    static int onCall(sd_bus_message* call, void* self,
                      sd_bus_error* error) noexcept;

    void prepare() override;
    void answer(sd_bus_message* reply, std::string_view method,
                const Json& arguments) const;
    std::string_view known(std::string_view path) const;
    void forEachBelow(std::string_view root, int32_t depth,
                      const auto& action) const;
    Paths endpoints(const std::string& association) const;
    Paths endpointsById(const Json& arguments) const;

    const Names* share(Names names)
    {
        return &*shared.insert(std::move(names)).first;
    }
    const Names* shown(const std::vector<Interface>& interfaces);
    void list(const std::string& path, const Service& service,
              const std::vector<Interface>& interfaces);
    void listAbove(std::string_view path, const Service& service,
                   const Names* interfaces);
    void associate(const std::string& path, const std::string& name,
                   const std::string& endpoint);
    void publish(const std::string& path, const Paths& ends);

    std::set<Names> shared;
    const Names* standard = shown({});
    Index index;
    /** The ends of its own objects; none of one that is gone. */
    std::map<std::string, Paths> associations;
    Slot methods;
};

} // namespace morvath::sim
