// SPDX-License-Identifier: Apache-2.0
#include "sim/record/raid_recorder.hpp"

#include "sim/record/raid_texts.hpp"
#include "sim/record/vontel_library.hpp"
#include "sim/vontel/record_fields.hpp"
#include "sim/vontel/section.hpp"

#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace morvath::sim
{

namespace
{

class RaidRecorder
{
  public:
    RaidRecorder(const VontelLibrary& library, Omissions& omissions) :
        library_(library),
        omissions_(omissions)
    {}

    Json section()
    {
        Json section{{"controllers", Json::array()}};
        Json configuration = Json::array();
        forEach<std::uint32_t>(
            "controllers",
            [&](auto& ids) { return library_.getRaidIdList(selector, ids); },
            [&](std::uint32_t id) {
                section["controllers"].push_back(controller(id, configuration));
            });
        if (!configuration.empty())
        {
            section["configuration"] = std::move(configuration);
        }
        section["texts"] = recordTexts(library_);
        return section;
    }

  private:
    /** What fails is left out and the rest goes on; the library may throw. */
    template <typename Action>
    void tried(const std::string& what, const Action& action)
    {
        try
        {
            action();
        }
        catch (const std::exception& error)
        {
            omissions_.tell("RAID: " + what, error.what());
        }
    }

    template <typename Id, typename List, typename Action>
    void forEach(const std::string& what, const List& list,
                 const Action& action)
    {
        std::vector<Id> ids;
        tried(what, [&] { succeed(list(ids)); });
        std::set<Id> seen;
        for (const Id id : ids)
        {
            tried(what + ": " + std::to_string(id), [&] {
                if (!seen.insert(id).second)
                {
                    throw std::runtime_error("is listed twice");
                }
                action(id);
            });
        }
    }

    Json controller(std::uint32_t raidId, Json& configuration)
    {
        vontel::RAIDInfo_T info{};
        succeed(library_.getRaidInfoById(selector, raidId, &info));
        vontel::RAIDInfo_T blank{};
        Json json = describeRecord(info.bytes, controllerFields, blank.bytes,
                                   {{"raid_id", raidId}});
        const std::string place = "controller " + std::to_string(raidId) + ": ";
        tried(place + "levels", [&] {
            const std::string levels =
                library_.getSupportRaidLevels(selector, raidId);
            if (!levels.empty())
            {
                json["supported_raid_levels"] = checkedText(levels);
            }
        });
        tried(place + "configuration",
              [&] { addConfiguration(configuration, library_, info); });
        forEach<std::uint16_t>(
            place + "physical drives",
            [&](auto& ids) {
                return library_.getPhyDevIdList(selector, raidId, ids);
            },
            [&](std::uint16_t id) {
                json["physical"].push_back(physicalDrive(raidId, id));
            });
        forEach<std::uint16_t>(
            place + "logical drives",
            [&](auto& ids) {
                return library_.getLogDevIdList(selector, raidId, ids);
            },
            [&](std::uint16_t id) {
                json["logical"].push_back(logicalDrive(raidId, id));
            });
        return json;
    }

    Json physicalDrive(std::uint32_t raidId, std::uint16_t id)
    {
        vontel::PhyDevInfo_T info{};
        succeed(library_.getPhyDevInfoById(selector, raidId, id, &info));
        vontel::PhyDevInfo_T blank = blankPhysicalDrive(raidId);
        return describeRecord(info.bytes, physicalDriveFields, blank.bytes,
                              {{"device_id", id}});
    }

    Json logicalDrive(std::uint32_t raidId, std::uint16_t id)
    {
        vontel::LogicalDevInfo_T info{};
        succeed(library_.getLogDevInfoById(selector, raidId, id, &info));
        vontel::LogicalDevInfo_T blank{};
        Json json{{"id", id}};
        json.update(describeRecord(info.bytes, logicalDriveFields, blank.bytes,
                                   Json::object()));
        return json;
    }

    static void succeed(int result)
    {
        if (result != 0)
        {
            throw std::runtime_error("the RAID management library fails with " +
                                     std::to_string(result));
        }
    }

    const VontelLibrary& library_;
    Omissions& omissions_;
};

} // namespace

std::optional<Json> recordRaid(Omissions& omissions)
{
    try
    {
        const auto library = VontelLibrary::load();
        if (!library || library->checkRaidMgrExist() == 0)
        {
            return std::nullopt;
        }
        return RaidRecorder(*library, omissions).section();
    }
    catch (const std::exception& error)
    {
        omissions.tell("RAID", error.what());
        return std::nullopt;
    }
}

} // namespace morvath::sim
