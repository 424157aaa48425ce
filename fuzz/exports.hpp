// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "fuzz/input.hpp"

#include <cstdint>
#include <span>

namespace morvath::fuzz
{

/** A function of the library, with arguments from an input. */
struct Export
{
    const char* name;
    /** Releases what it stored; what it raises leaves this, too. */
    int32_t (*call)(Input& input);
};

/** All of them; the releasing ones are called by those that need them. */
std::span<const Export> exports();

/** Those that ask the RAID management library. */
std::span<const Export> raidExports();

/** Chooses one, calls it and ends the run unless it did what it may. */
void run(std::span<const Export> among, Input input);

} // namespace morvath::fuzz
