// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "vontel.hpp"

#include <nlohmann/json_fwd.hpp>

#include <array>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vontel::simulation
{

/** Kinds of codes that have texts. */
enum CodeKind : std::size_t
{
    raidLevel,
    driveState,
    mediaType,
    interfaceType,
    speed,
};

/** What a section calls them. */
constexpr std::array<std::string_view, 5> codeKinds{
    "raid_level", "drive_state", "media_type", "interface_type", "speed"};

template <typename Bytes>
struct Drive
{
    uint32_t id = 0;
    Bytes record{};
};

struct Controller
{
    uint32_t id = 0;
    RAIDInfo_T record{};
    std::string levels{};
    std::vector<Drive<PhyDevInfo_T>> physical{};
    std::vector<Drive<LogicalDevInfo_T>> logical{};
};

/** What getRaidConf finds; vendor, device, subvendor and subdevice. */
struct Configuration
{
    std::array<std::string, 4> identifiers{};
    std::array<std::string, 4> outputs{};

    bool operator==(const Configuration&) const = default;
};

struct Fault
{
    std::string operation;
    int result = 0;
    /** Counted from 1; 0: all of them. */
    uint32_t call = 0;
};

/** What the library knows: the RAID section of a scenario. */
struct Section
{
    bool hasManager = true;
    std::vector<Controller> controllers{};
    std::vector<Configuration> configuration{};
    /** By the kind and the code. */
    std::map<std::pair<std::size_t, uint8_t>, std::string> texts{};
    std::string unknown = "Unknown";
    std::vector<Fault> faults{};
};

/** What is wrong in a section. */
struct Mistake : std::runtime_error
{
    Mistake(std::string place, const std::string& message) :
        std::runtime_error(message),
        place(std::move(place))
    {}

    /** A JSON pointer into the section. */
    std::string place;
};

/** What a drive is before it is filled: it belongs to a controller. */
PhyDevInfo_T blankDrive(uint32_t raidId);

/** @throws Mistake  the first one */
Section read(const nlohmann::ordered_json& json);

/**
 * Reads a text.
 * @param[in] name  stands before the mistake
 * @throws std::runtime_error  the mistake and its place
 */
Section parse(const std::string& text, const std::string& name);

/** The reverse, of a section with a manager and without faults. */
nlohmann::ordered_json write(const Section& section);

/** Whether JSON can hold a text. */
bool isUtf8(const std::string& text);

} // namespace vontel::simulation
