// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>

#pragma GCC visibility push(default)

/**
 * Steers the simulated RAID management library from within the process that
 * it serves. Without this it serves what the environment names.
 */
namespace vontel::simulation
{

/**
 * Serves the RAID section of a scenario, with all counts at zero.
 * @throws std::runtime_error  the mistake in it and its place
 */
void load(const std::string& section);

/** Forgets the section and the counts; the environment counts again. */
void reset();

/** How often each operation was called, those that were called at all. */
std::map<std::string, unsigned> calls();

} // namespace vontel::simulation

#pragma GCC visibility pop
