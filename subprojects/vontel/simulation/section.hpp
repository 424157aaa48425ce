// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "simulation/document.hpp"

#include <array>
#include <map>
#include <span>

namespace vontel::simulation
{

using namespace document;

using Record = std::vector<unsigned char>;

/** A controller or a drive. */
struct Item
{
    uint32_t id;
    Record record;
};

/**
 * The items of every list of a RAID section by its key, which is
 * "controllers", "physical" or "logical", and the id of the controller that
 * has the list: 0 for the controllers themselves.
 */
using Lists = std::map<std::pair<std::string, uint32_t>, std::vector<Item>>;

/** @throws Mistake  the first one in a RAID section */
Lists read(const Json& section);

/** What in such a list describes a record. */
Json describe(const std::string& list, uint32_t raidId, uint32_t id,
              std::span<const unsigned char> record);

/** What getRaidConf looks for, in an entry of the configuration. */
std::array<std::string, 4> identifiersOf(const Json& entry);

/** Whether a document can hold a value. */
bool isUtf8(const Json& value);

} // namespace vontel::simulation
