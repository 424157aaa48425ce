// SPDX-License-Identifier: Apache-2.0
#include "simulation/control.hpp"
#include "simulation/section.hpp"
#include "vontel.hpp"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <tuple>

namespace vontel
{
namespace
{

using namespace simulation;

constexpr auto sectionVariable = "MORVATH_SIM_RAID";
constexpr auto success = 0;
constexpr auto refused = -1;

struct Session
{
    Section section;
    std::map<std::string, unsigned> calls{};
};

/** The library has no object to hold what it serves, hence the static one. */
std::optional<Session> session;

Section sectionOfEnvironment()
{
    const auto* file = std::getenv(sectionVariable);
    if (!file || !*file)
    {
        return {.hasManager = false};
    }
    std::ifstream stream(file, std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(stream), {});
    if (!stream)
    {
        throw std::runtime_error(file + std::string(": cannot be read"));
    }
    return readText(text, file);
}

/** The section, after an operation was counted. */
const Section& counted(const char* operation)
{
    if (!session)
    {
        session = Session{sectionOfEnvironment()};
    }
    ++session->calls[operation];
    return session->section;
}

/** The result of an operation: a fault decides it, or else the action does. */
int resultOf(const char* operation, const auto& action)
{
    const auto& section = counted(operation);
    const auto call = session->calls[operation];
    for (const auto& fault : section.faults)
    {
        if (fault.operation == operation &&
            (fault.call == 0 || fault.call == call))
        {
            return fault.result;
        }
    }
    return action(section);
}

int onList(const char* operation, uint8_t selector, const char* list,
           uint32_t raidId, const auto& action)
{
    return resultOf(operation, [&](const Section& section) {
        const auto found = section.lists.find({list, raidId});
        const auto isThere =
            section.hasManager && selector == 0 && found != section.lists.end();
        return isThere ? action(found->second) : refused;
    });
}

int listIds(const char* operation, uint8_t selector, const char* list,
            uint32_t raidId, auto& ids)
{
    return onList(operation, selector, list, raidId, [&](const auto& items) {
        std::ranges::transform(items, std::back_inserter(ids), &Item::id);
        return success;
    });
}

int copyRecord(const char* operation, uint8_t selector, const char* list,
               uint32_t raidId, uint32_t id, auto& info)
{
    return onList(operation, selector, list, raidId, [&](const auto& items) {
        const auto item = std::ranges::find(items, id, &Item::id);
        if (item == items.end())
        {
            return refused;
        }
        std::copy(item->record.begin(), item->record.end(), info.bytes);
        return success;
    });
}

std::string textOf(const char* operation, const char* kind, uint32_t code)
{
    const auto& section = counted(operation);
    const auto text = section.texts.find({kind, code});
    return text == section.texts.end() ? section.unknown : text->second;
}

} // namespace

int checkRaidMgrExist()
{
    return resultOf(__func__,
                    [](const Section& section) { return section.hasManager; });
}

int getRaidIdList(uint8_t selector, std::vector<uint32_t>& raidIds)
{
    return listIds(__func__, selector, "controllers", 0, raidIds);
}

int getRaidInfoById(uint8_t selector, uint32_t raidId, RAIDInfo_T* info)
{
    return copyRecord(__func__, selector, "controllers", 0, raidId, *info);
}

int getPhyDevIdList(uint8_t selector, uint32_t raidId,
                    std::vector<uint16_t>& deviceIds)
{
    return listIds(__func__, selector, "physical", raidId, deviceIds);
}

int getPhyDevInfoById(uint8_t selector, uint32_t raidId, uint16_t deviceId,
                      PhyDevInfo_T* info)
{
    return copyRecord(__func__, selector, "physical", raidId, deviceId, *info);
}

int getLogDevIdList(uint8_t selector, uint32_t raidId,
                    std::vector<uint16_t>& logicalIds)
{
    return listIds(__func__, selector, "logical", raidId, logicalIds);
}

int getLogDevInfoById(uint8_t selector, uint32_t raidId, uint16_t logicalId,
                      LogicalDevInfo_T* info)
{
    return copyRecord(__func__, selector, "logical", raidId, logicalId, *info);
}

int getRaidConf(std::string vendor, std::string device, std::string subVendor,
                std::string subDevice, std::string& first, std::string& second,
                std::string& third, std::string& fourth)
{
    return resultOf(__func__, [&](const Section& section) {
        const auto entry =
            section.configuration.find({vendor, device, subVendor, subDevice});
        if (entry == section.configuration.end())
        {
            return 0;
        }
        std::tie(first, second, third, fourth) = std::tuple_cat(entry->second);
        return 1;
    });
}

std::string getSupportRaidLevels(uint8_t selector, uint32_t raidId)
{
    return textOf(__func__, selector == 0 ? levelsKey : "", raidId);
}

std::string getRaidLevelStr(uint8_t level)
{
    return textOf(__func__, "raid_level", level);
}

std::string getPhyDevStateStr(uint8_t state)
{
    return textOf(__func__, "drive_state", state);
}

std::string getDriveMediaType(uint8_t type)
{
    return textOf(__func__, "media_type", type);
}

std::string getDriveInterfaceType(uint8_t type)
{
    return textOf(__func__, "interface_type", type);
}

std::string getDriveSpeed(uint8_t linkSpeed)
{
    return textOf(__func__, "speed", linkSpeed);
}

void simulation::load(const std::string& section)
{
    session = Session{readText(section, "RAID")};
}

void simulation::reset() { session.reset(); }

std::map<std::string, unsigned> simulation::calls()
{
    return session ? session->calls : std::map<std::string, unsigned>{};
}

} // namespace vontel
