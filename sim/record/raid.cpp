// SPDX-License-Identifier: Apache-2.0
#include "sim/record/record.hpp"
#include "simulation/section.hpp"
#include "vontel.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <set>
#include <stdexcept>

namespace morvath::sim
{
namespace
{

using namespace vontel::simulation;

constexpr uint8_t selector = 0;

/** What has texts for its codes, as a section calls it. */
constexpr std::pair<const char*, std::string (*)(uint8_t)> codeTexts[]{
    {"raid_level", vontel::getRaidLevelStr},
    {"drive_state", vontel::getPhyDevStateStr},
    {"media_type", vontel::getDriveMediaType},
    {"interface_type", vontel::getDriveInterfaceType},
    {"speed", vontel::getDriveSpeed}};

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
        readList<uint32_t, vontel::RAIDInfo_T>(
            section, "controllers", "controllers", vontel::getRaidIdList,
            vontel::getRaidInfoById);
        if (!configuration.empty())
        {
            section["configuration"] = configuration;
        }
        section["texts"] = {{"unknown", "Unknown"}};
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

    /** Describes all records of a list, and what belongs to a controller. */
    template <typename Id, typename Record>
    void readList(Json& parent, const std::string& list,
                  const std::string& what, const auto& idsOf,
                  const auto& recordOf, auto... raidId)
    {
        std::vector<Id> ids;
        attempt(what, [&] { succeed(idsOf(selector, raidId..., ids)); });
        std::set<Id> seen;
        for (const auto id : ids)
        {
            attempt(what + ": " + std::to_string(id), [&] {
                if (!seen.insert(id).second)
                {
                    throw std::runtime_error("is listed twice");
                }
                Record record{};
                succeed(recordOf(selector, raidId..., id, &record));
                auto item =
                    describe(list, (raidId + ... + 0), id, record.bytes);
                if constexpr (sizeof...(raidId) == 0)
                {
                    addParts(item, id);
                }
                parent[list].push_back(std::move(item));
            });
        }
    }

    void addParts(Json& controller, uint32_t id)
    {
        const auto place = "controller " + std::to_string(id) + ": ";
        attempt(place + "levels", [&] {
            const auto levels = vontel::getSupportRaidLevels(selector, id);
            if (!checked(levels).empty())
            {
                controller["supported_raid_levels"] = levels;
            }
        });
        attempt(place + "configuration", [&] { addConfiguration(controller); });
        readList<uint16_t, vontel::PhyDevInfo_T>(
            controller, "physical", place + "physical drives",
            vontel::getPhyDevIdList, vontel::getPhyDevInfoById, id);
        readList<uint16_t, vontel::LogicalDevInfo_T>(
            controller, "logical", place + "logical drives",
            vontel::getLogDevIdList, vontel::getLogDevInfoById, id);
    }

    /** Adds what the library knows of the identifiers of a controller. */
    void addConfiguration(const Json& controller)
    {
        Json entry;
        for (const std::string key :
             {"vendor", "device", "subvendor", "subdevice"})
        {
            std::array<char, sizeof("0x0000")> text;
            std::snprintf(text.data(), text.size(), "0x%04x",
                          controller.value("pci_" + key, uint16_t{}));
            entry[key] = text.data();
        }
        const auto ids = identifiersOf(entry);
        std::array<std::string, 4> outputs;
        const auto isKnown =
            vontel::getRaidConf(ids[0], ids[1], ids[2], ids[3], outputs[0],
                                outputs[1], outputs[2], outputs[3]);
        entry["outputs"] = outputs;
        // Two controllers of one kind share an entry.
        if (isKnown != 0 && std::ranges::count(configuration, entry) == 0)
        {
            std::ranges::for_each(outputs, checked);
            configuration.push_back(std::move(entry));
        }
    }

    /** Any text can be that of the unknown codes: the others are named. */
    static Json texts()
    {
        const auto unknown = checked(vontel::getRaidLevelStr(UINT8_MAX));
        Json known;
        for (const auto& [kind, textOf] : codeTexts)
        {
            for (auto code = 0U; code <= UINT8_MAX; ++code)
            {
                const auto text = checked(textOf(static_cast<uint8_t>(code)));
                if (text != unknown)
                {
                    known[kind][std::to_string(code)] = text;
                }
            }
        }
        known["unknown"] = unknown;
        return known;
    }

    const Omit& omit;
    Json configuration = Json::array();
};

} // namespace

[[gnu::visibility("default")]] void recordRaid(Json& scenario, const Omit& omit)
{
    try
    {
        if (vontel::checkRaidMgrExist() != 0)
        {
            scenario["raid"] = RaidRecorder(omit).section();
        }
    }
    catch (const std::exception& error)
    {
        omit("RAID", error.what());
    }
}

} // namespace morvath::sim
