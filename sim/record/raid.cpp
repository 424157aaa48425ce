// SPDX-License-Identifier: Apache-2.0
#include "sim/record/raid.hpp"

#include "simulation/records.hpp"
#include "vontel.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <set>
#include <stdexcept>

namespace morvath::sim
{

namespace
{

using namespace vontel::simulation;
namespace raid_info = vontel::raid_info;

constexpr uint8_t selector = 0;
constexpr auto codeCount = 256U;

/** The functions for the texts of codes, in the order of codeKeys. */
constexpr std::array codeTexts{
    vontel::getRaidLevelStr, vontel::getPhyDevStateStr,
    vontel::getDriveMediaType, vontel::getDriveInterfaceType,
    vontel::getDriveSpeed};

const std::string& checked(const std::string& text)
{
    if (!isUtf8(text))
    {
        throw std::runtime_error("a text is not UTF-8");
    }
    return text;
}

void succeed(int result)
{
    if (result != 0)
    {
        throw std::runtime_error("the RAID management library fails with " +
                                 std::to_string(result));
    }
}

/** Reads the library; what fails is left out, and the rest goes on. */
class RaidRecorder
{
  public:
    explicit RaidRecorder(const Omit& omit) : omit(omit) {}

    Json section()
    {
        Json section{{"controllers", Json::array()}};
        auto configuration = Json::array();
        forEach<uint32_t>(
            "controllers",
            [&](auto& ids) { return vontel::getRaidIdList(selector, ids); },
            [&](uint32_t raidId) {
                section["controllers"].push_back(
                    controller(raidId, configuration));
            });
        if (!configuration.empty())
        {
            section["configuration"] = std::move(configuration);
        }
        attempt("texts", [&] { section["texts"] = texts(); });
        return section;
    }

  private:
    void attempt(const std::string& what, const auto& action)
    {
        try
        {
            action();
        }
        catch (const std::exception& error)
        {
            omit("RAID: " + what, error.what());
        }
    }

    template <typename Id>
    void forEach(const std::string& what, const auto& list, const auto& action)
    {
        std::vector<Id> ids;
        attempt(what, [&] { succeed(list(ids)); });
        std::set<Id> seen;
        for (const auto id : ids)
        {
            attempt(what + ": " + std::to_string(id), [&] {
                if (!seen.insert(id).second)
                {
                    throw std::runtime_error("is listed twice");
                }
                action(id);
            });
        }
    }

    Json controller(uint32_t raidId, Json& configuration)
    {
        vontel::RAIDInfo_T info{};
        succeed(vontel::getRaidInfoById(selector, raidId, &info));
        vontel::RAIDInfo_T blank{};
        auto json = describe(info.bytes, controllers, blank.bytes,
                             {{"raid_id", raidId}});
        const auto place = "controller " + std::to_string(raidId) + ": ";
        attempt(place + "levels", [&] {
            const auto levels = vontel::getSupportRaidLevels(selector, raidId);
            if (!levels.empty())
            {
                json["supported_raid_levels"] = checked(levels);
            }
        });
        attempt(place + "configuration",
                [&] { addConfiguration(configuration, info); });
        addDrives(json, "physical", vontel::getPhyDevIdList,
                  vontel::getPhyDevInfoById, physicalDrives, "device_id",
                  blankDrive(raidId));
        addDrives(json, "logical", vontel::getLogDevIdList,
                  vontel::getLogDevInfoById, logicalDrives, "id",
                  vontel::LogicalDevInfo_T{});
        return json;
    }

    template <typename Record>
    void addDrives(Json& controller, const char* key, const auto& listIds,
                   const auto& read, const RecordKind& kind, const char* idKey,
                   const Record& blank)
    {
        const auto raidId = controller["raid_id"].get<uint32_t>();
        forEach<uint16_t>(
            "controller " + std::to_string(raidId) + ": " + key + " drives",
            [&](auto& ids) { return listIds(selector, raidId, ids); },
            [&](uint16_t id) {
                Record drive{};
                succeed(read(selector, raidId, id, &drive));
                auto none = blank;
                controller[key].push_back(
                    describe(drive.bytes, kind, none.bytes, {{idKey, id}}));
            });
    }

    /** Adds what the library knows of the identifiers of a controller. */
    static void addConfiguration(Json& configuration,
                                 const vontel::RAIDInfo_T& info)
    {
        constexpr std::array offsets{raid_info::vendorId, raid_info::deviceId,
                                     raid_info::subVendorId,
                                     raid_info::subDeviceId};
        std::array<std::string, offsets.size()> ids;
        std::array<std::string, offsets.size()> outputs;
        auto entry = Json::object();
        for (std::size_t index = 0; index < offsets.size(); ++index)
        {
            const auto* bytes = info.bytes + offsets[index];
            std::array<char, sizeof("0x0000")> text;
            std::snprintf(text.data(), text.size(), "0x%02x%02x", bytes[1],
                          bytes[0]);
            ids[index] = text.data();
            entry[std::string(identifierKeys[index])] = ids[index];
        }
        if (vontel::getRaidConf(ids[0], ids[1], ids[2], ids[3], outputs[0],
                                outputs[1], outputs[2], outputs[3]) == 0)
        {
            return;
        }
        for (const auto& output : outputs)
        {
            entry["outputs"].push_back(checked(output));
        }
        // Two controllers of one kind share an entry.
        if (std::ranges::find(configuration, entry) == configuration.end())
        {
            configuration.push_back(std::move(entry));
        }
    }

    /** What is said of most codes is said of those that are unknown. */
    static Json texts()
    {
        std::vector<std::string> texts;
        std::map<std::string, unsigned> counts;
        for (const auto textOf : codeTexts)
        {
            for (auto code = 0U; code < codeCount; ++code)
            {
                texts.push_back(checked(textOf(static_cast<uint8_t>(code))));
                ++counts[texts.back()];
            }
        }
        const auto& unknown =
            std::ranges::max_element(counts, {}, [](const auto& count) {
                return count.second;
            })->first;
        auto json = Json::object();
        for (std::size_t index = 0; index < texts.size(); ++index)
        {
            if (texts[index] != unknown)
            {
                json[std::string(codeKeys[index / codeCount])]
                    [std::to_string(index % codeCount)] = texts[index];
            }
        }
        json["unknown"] = unknown;
        return json;
    }

    const Omit& omit;
};

} // namespace

[[gnu::visibility("default")]] void recordRaid(Json& section, const Omit& omit)
{
    try
    {
        if (vontel::checkRaidMgrExist() != 0)
        {
            section = RaidRecorder(omit).section();
        }
    }
    catch (const std::exception& error)
    {
        omit("RAID", error.what());
    }
}

} // namespace morvath::sim
