// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/mapper_index.hpp"
#include "sim/service.hpp"

#include <memory>
#include <vector>

namespace morvath::sim
{

/** The service that knows where everything is. */
class Mapper : public Service
{
  public:
    explicit Mapper(const Surroundings& surroundings);

    /** Takes in what the living services publish now. */
    void update(const std::vector<std::unique_ptr<Service>>& services);

  protected:
    Message callMethod(const Request& request) override;
    std::string_view describeMethods(std::string_view path) const override;

  private:
    Message getObject(const Request& request) const;
    Message getSubTree(const Request& request) const;
    Message getSubTreePaths(const Request& request) const;

    MapperIndex index_;
};

} // namespace morvath::sim
