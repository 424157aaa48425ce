// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/process.hpp"

#include <string>

namespace morvath::sim
{

enum class BusProgram
{
    daemon,
    broker,
};

/**
 * A private message bus. It ends with the object, or with the thread that
 * made the object, however that one ends; it leaves no files.
 */
class Daemon
{
  public:
    explicit Daemon(BusProgram program = BusProgram::daemon);

    const std::string& address() const noexcept { return busAddress; }

  private:
    const std::string busAddress;
    const MemoryFile configuration;
    /** The program also warns of harmless things. */
    const MemoryFile messages;
    const Process process;
};

} // namespace morvath::sim
