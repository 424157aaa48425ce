// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace morvath::sim
{

/** Tells on standard error what a recording has to do without. */
class Omissions
{
  public:
    void tell(const std::string& what, const std::string& why);

    bool any() const noexcept
    {
        return any_;
    }

  private:
    bool any_ = false;
};

} // namespace morvath::sim
