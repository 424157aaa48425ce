// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "raid/vontel.hpp"
#include "sim/json_cursor.hpp"

#include <array>
#include <map>
#include <string>
#include <vector>

namespace morvath::sim
{

/** A record and the number that the library knows it by. */
template <typename Record>
struct Numbered
{
    std::uint16_t id;
    Record record;
};

struct RaidController
{
    std::uint32_t raidId;
    vontel::RAIDInfo_T info;
    std::string supportedLevels;
    std::vector<Numbered<vontel::PhyDevInfo_T>> physicalDrives;
    std::vector<Numbered<vontel::LogicalDevInfo_T>> logicalDrives;
};

using FourTexts = std::array<std::string, 4>;

/** The identifiers of a configuration, in the order of its key. */
constexpr std::array<std::string_view, 4> identifierKeys{
    "vendor", "device", "subvendor", "subdevice"};

/** The kinds of codes that have texts, in the order of codeKeys. */
enum class CodeKind
{
    raidLevel,
    driveState,
    mediaType,
    interfaceType,
    speed,
};

constexpr std::array<std::string_view, 5> codeKeys{
    "raid_level", "drive_state", "media_type", "interface_type", "speed"};

struct RaidTexts
{
    std::array<std::map<std::uint8_t, std::string>, codeKeys.size()> byCode;
    std::string unknown = "Unknown";
};

struct RaidFault
{
    std::string operation;
    /** Zero: every call. */
    unsigned call = 0;
    int result = 0;
};

/** What the RAID section of a scenario says. */
struct RaidSection
{
    bool hasManager = true;
    std::vector<RaidController> controllers;
    /** From vendor, device, subsystem vendor and subsystem of a controller. */
    std::map<FourTexts, FourTexts> configuration;
    RaidTexts texts;
    std::vector<RaidFault> faults;
};

/** What a scenario fills: it belongs to a controller, the rest is zero. */
vontel::PhyDevInfo_T blankPhysicalDrive(std::uint32_t raidId);

/** @throws ScenarioError */
RaidSection raidSectionFromJson(const JsonCursor& json);

} // namespace morvath::sim
