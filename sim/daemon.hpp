// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/descriptor.hpp"
#include "sim/pipe.hpp"
#include "sim/process.hpp"

#include <string>

namespace morvath::sim
{

/**
 * A private message bus. It ends with the object, or with the thread that
 * made the object, however that one ends; it leaves no files.
 */
class Daemon
{
  public:
    Daemon();

    const std::string& address() const noexcept
    {
        return address_;
    }

  private:
    Daemon(Pipe addressPipe, const Descriptor& messages);

    Process process_;
    std::string address_;
};

} // namespace morvath::sim
