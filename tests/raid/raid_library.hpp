// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "morvath.h"
#include "simulation/control.hpp"
#include "support/records.hpp"

#include <string>

namespace morvath::tests
{

inline const Json noManager{{"manager_present", false}};

/** The RAID management library with a section of its own, until it goes. */
class RaidLibrary
{
  public:
    explicit RaidLibrary(const Json& section)
    {
        vontel::simulation::load(section.dump());
    }

    ~RaidLibrary() { vontel::simulation::reset(); }

    RaidLibrary(const RaidLibrary&) = delete;
    RaidLibrary& operator=(const RaidLibrary&) = delete;

    static auto calls() { return vontel::simulation::calls(); }
};

/** A section in which the n-th call of an operation has another result. */
inline Json withFault(Json section, const std::string& operation, unsigned call,
                      int result)
{
    section["faults"].push_back(
        {{"operation", operation}, {"call", call}, {"result", result}});
    return section;
}

/** Two controllers whose drives partly have the same ids. */
inline Json twoControllers()
{
    return Json::parse(R"({
        "controllers": [
            {"raid_id": 7, "name": "left", "text84": "b", "text132": "c",
             "text164": "d", "pci_vendor": 43981, "pci_device": 21,
             "pci_subvendor": 258, "pci_subdevice": 772, "word332": 65535, "byte335": 255, "supported_raid_levels": "0/1",
             "physical": [
                {"device_id": 4, "state": 1, "text80": "L4"},
                {"device_id": 5, "state": 2, "text80": "L5"}],
             "logical": [
                {"id": 1, "raid_level": 1, "members": [4, 5]}]},
            {"raid_id": 4294967295, "name": "right", "physical": [
                {"device_id": 4, "state": 1, "text80": "R4"},
                {"device_id": 65535, "state": 9, "text80": "R65535"}],
             "logical": [
                {"id": 1, "raid_level": 5, "members": [4]},
                {"id": 2, "raid_level": 0, "members": []}]}],
        "configuration": [
            {"vendor": "0xabcd", "device": "0x0015", "subvendor": "0x0102",
             "subdevice": "0x0304", "outputs": ["one", "", "three", "four"]}],
        "texts": {"raid_level": {"0": "RAID0", "1": "RAID1", "5": "RAID5"},
                  "drive_state": {"1": "Online", "2": "Hot Spare"}}})");
}

/** What a table that needs no bus makes of a section; it sets its counter. */
template <auto Get>
Lines raidLinesOf(const Json& section)
{
    constexpr int32_t preset = 77;
    const RaidLibrary library(section);
    return linesOf<Get>(preset);
}

} // namespace morvath::tests
