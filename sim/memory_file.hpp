// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/descriptor.hpp"

#include <string>
#include <string_view>

namespace morvath::sim
{

/** A text that other processes can read as a file. */
class MemoryFile
{
  public:
    explicit MemoryFile(std::string_view contents);

    /** Good in every process of the same user while this one lives. */
    std::string path() const;

  private:
    Descriptor file_;
};

} // namespace morvath::sim
