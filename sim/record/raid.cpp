// SPDX-License-Identifier: Apache-2.0
#include "sim/record/parts.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <set>
#include <stdexcept>
#include <tuple>
#include <utility>

namespace morvath::sim
{
namespace
{

using namespace vontel::simulation;
namespace raid_info = vontel::raid_info;

constexpr uint8_t selector = 0;

/** In the order of CodeKind. */
constexpr std::array codeTexts{
    vontel::getRaidLevelStr, vontel::getPhyDevStateStr,
    vontel::getDriveMediaType, vontel::getDriveInterfaceType,
    vontel::getDriveSpeed};

constexpr std::array identifierOffsets{raid_info::vendorId, raid_info::deviceId,
                                       raid_info::subVendorId,
                                       raid_info::subDeviceId};

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
    RaidRecorder(Section& section, const Omit& omit) :
        section(section),
        omit(omit)
    {}

    void record()
    {
        readEach<uint32_t>(
            "controllers",
            [](auto& ids) { return vontel::getRaidIdList(selector, ids); },
            [this](uint32_t id) { addController(id); });
        attempt("texts", [this] { readTexts(); });
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
    void readEach(const std::string& what, const auto& list, const auto& read)
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
                read(id);
            });
        }
    }

    void addController(uint32_t id)
    {
        Controller controller{.id = id};
        succeed(vontel::getRaidInfoById(selector, id, &controller.record));
        const auto place = "controller " + std::to_string(id) + ": ";
        attempt(place + "levels", [&] {
            controller.levels =
                checked(vontel::getSupportRaidLevels(selector, id));
        });
        attempt(place + "configuration",
                [&] { addConfiguration(controller.record); });
        readDrives(place + "physical drives", id, vontel::getPhyDevIdList,
                   vontel::getPhyDevInfoById, controller.physical);
        readDrives(place + "logical drives", id, vontel::getLogDevIdList,
                   vontel::getLogDevInfoById, controller.logical);
        section.controllers.push_back(std::move(controller));
    }

    template <typename Record>
    void readDrives(const std::string& what, uint32_t raidId, const auto& list,
                    const auto& read, std::vector<Drive<Record>>& drives)
    {
        readEach<uint16_t>(
            what, [&](auto& ids) { return list(selector, raidId, ids); },
            [&](uint16_t id) {
                Drive<Record> drive{.id = id};
                succeed(read(selector, raidId, id, &drive.record));
                drives.push_back(drive);
            });
    }

    /** Adds what the library knows of the identifiers of a controller. */
    void addConfiguration(const vontel::RAIDInfo_T& info)
    {
        Configuration entry;
        auto& [ids, outputs] = entry;
        std::ranges::transform(
            identifierOffsets, ids.begin(), [&](std::size_t offset) {
                std::array<char, sizeof("0x0000")> text;
                std::snprintf(text.data(), text.size(), "0x%02x%02x",
                              info.bytes[offset + 1], info.bytes[offset]);
                return std::string(text.data());
            });
        // Two controllers of one kind share an entry.
        if (vontel::getRaidConf(ids[0], ids[1], ids[2], ids[3], outputs[0],
                                outputs[1], outputs[2], outputs[3]) != 0 &&
            std::ranges::count(section.configuration, entry) == 0)
        {
            std::ranges::for_each(outputs, checked);
            section.configuration.push_back(std::move(entry));
        }
    }

    /** What is said of most codes is said of those that are unknown. */
    void readTexts()
    {
        decltype(section.texts) texts;
        std::map<std::string, unsigned> counts;
        for (std::size_t kind = 0; kind < codeTexts.size(); ++kind)
        {
            for (auto code = 0U; code <= UINT8_MAX; ++code)
            {
                const auto byte = static_cast<uint8_t>(code);
                const auto text = checked(codeTexts[kind](byte));
                texts[{kind, byte}] = text;
                ++counts[text];
            }
        }
        using Count = decltype(counts)::value_type;
        section.unknown =
            std::ranges::max_element(counts, {}, &Count::second)->first;
        std::erase_if(texts, [this](const auto& one) {
            return one.second == section.unknown;
        });
        section.texts = std::move(texts);
    }

    Section& section;
    const Omit& omit;
};

} // namespace

[[gnu::visibility("default")]] void recordRaid(Section& section,
                                               const Omit& omit)
{
    section.hasManager = false;
    try
    {
        section.hasManager = vontel::checkRaidMgrExist() != 0;
        if (section.hasManager)
        {
            RaidRecorder(section, omit).record();
        }
    }
    catch (const std::exception& error)
    {
        omit("RAID", error.what());
    }
}

} // namespace morvath::sim
