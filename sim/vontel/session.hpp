// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/vontel/section.hpp"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace morvath::sim
{

/** A RAID section in use. */
class Session
{
  public:
    explicit Session(RaidSection section) : section_(std::move(section)) {}

    /** The session that is served now, the environment's if there is none. */
    static Session& current();

    /** Counts a call. @return the result that a fault decides, if one does */
    std::optional<int> count(const std::string& operation);

    const RaidSection& section() const
    {
        return section_;
    }

    /** None for a number that no controller has. */
    const RaidController* controller(std::uint32_t raidId) const;

    const std::string& text(CodeKind kind, std::uint8_t code) const;

    const std::map<std::string, unsigned>& calls() const
    {
        return calls_;
    }

  private:
    RaidSection section_;
    std::map<std::string, unsigned> calls_;
};

} // namespace morvath::sim
