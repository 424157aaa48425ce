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

struct Fault
{
    std::string operation;
    int result;
    /** Counted from 1; 0: all of them. */
    uint64_t call;
};

/** Of a text of a controller that is in no record. */
constexpr auto levelsKey = "supported_raid_levels";

using FourTexts = std::array<std::string, 4>;

/** What the library knows: the RAID section of a scenario. */
struct Section
{
    bool hasManager = true;
    Lists lists{};
    /** What getRaidConf finds, by vendor, device, subvendor and subdevice. */
    std::map<FourTexts, FourTexts> configuration{};
    /** By their key and the code, or the id of the controller. */
    std::map<std::pair<std::string, uint32_t>, std::string> texts{};
    std::string unknown = "Unknown";
    std::vector<Fault> faults{};
};

/** @throws Mistake  the first one */
Section read(const Json& json);

/**
 * Reads a text.
 * @param[in] name  stands before the mistake
 * @throws std::runtime_error  the mistake and its place
 */
Section readText(const std::string& text, const std::string& name);

/** What in such a list describes a record. */
Json describe(const std::string& list, uint32_t raidId, uint32_t id,
              std::span<const unsigned char> record);

/** What an entry of the configuration is for. */
FourTexts identifiersOf(const Json& entry);

/** Whether a document can hold a value. */
bool isUtf8(const Json& value);

} // namespace vontel::simulation
