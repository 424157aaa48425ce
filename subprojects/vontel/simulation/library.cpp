// SPDX-License-Identifier: Apache-2.0
#include "simulation/control.hpp"
#include "simulation/section.hpp"
#include "vontel.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>

namespace vontel
{
namespace
{

using namespace simulation;

constexpr auto sectionVariable = "MORVATH_SIM_RAID";
constexpr auto success = 0;
constexpr auto refused = -1;

/** A section while it is served. */
struct Session
{
    /** With what is left out. */
    Json section = Json::parse(R"({
        "manager_present": true, "controllers": [], "configuration": [],
        "texts": {"unknown": "Unknown"}, "faults": []})");
    Lists lists{};
    std::map<std::string, unsigned> calls{};
};

/** The library has no object to hold what it serves, hence the static one. */
std::optional<Session> session;

/** @param[in] name  stands before a mistake in the text */
void serve(const std::string& text, const std::string& name)
{
    Session next;
    Json section;
    try
    {
        parse(text, section);
        next.lists = read(section);
    }
    catch (const Mistake& mistake)
    {
        const auto place = placeOf(mistake, section);
        throw std::runtime_error(name + ": " + (place.empty() ? "/" : place) +
                                 ": " + mistake.what());
    }
    next.section.update(section, true);
    session = std::move(next);
}

void serveEnvironment()
{
    const auto* file = std::getenv(sectionVariable);
    if (!file || !*file)
    {
        return serve(R"({"manager_present": false})", "");
    }
    std::ifstream stream(file, std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(stream), {});
    if (!stream)
    {
        throw std::runtime_error(file + std::string(": cannot be read"));
    }
    serve(text, file);
}

/** How many calls of an operation there are, with this one. */
unsigned counted(const std::string& operation)
{
    if (!session)
    {
        serveEnvironment();
    }
    return ++session->calls[operation];
}

/** The result of an operation: a fault decides it, or else the action does. */
int resultOf(const std::string& operation, const auto& action)
{
    const auto call = counted(operation);
    for (const auto& fault : session->section["faults"])
    {
        if (fault["operation"] == operation &&
            fault.value("call", call) == call)
        {
            return fault["result"];
        }
    }
    return action();
}

int onList(const char* operation, uint8_t selector, const char* list,
           uint32_t raidId, const auto& action)
{
    return resultOf(operation, [&] {
        const auto& [section, lists, calls] = *session;
        const auto found = lists.find({list, raidId});
        const auto isThere = section["manager_present"] == true &&
                             selector == 0 && found != lists.end();
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
        std::ranges::copy(item->record, info.bytes);
        return success;
    });
}

std::string codeText(const char* operation, const std::string& kind,
                     uint8_t code)
{
    counted(operation);
    const Json::json_pointer place('/' + kind + '/' + std::to_string(code));
    const auto& texts = session->section["texts"];
    return texts.contains(place) ? texts[place] : texts["unknown"];
}

} // namespace

int checkRaidMgrExist()
{
    return resultOf(__func__,
                    [] { return session->section["manager_present"]; });
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
    return resultOf(__func__, [&] {
        const auto& entries = session->section["configuration"];
        const auto entry = std::ranges::find(
            entries, std::array{vendor, device, subVendor, subDevice},
            identifiersOf);
        if (entry == entries.end())
        {
            return 0;
        }
        std::tie(first, second, third, fourth) = std::tuple_cat(
            entry->at("outputs").get<std::array<std::string, 4>>());
        return 1;
    });
}

std::string getSupportRaidLevels(uint8_t selector, uint32_t raidId)
{
    counted(__func__);
    const auto& [section, lists, calls] = *session;
    for (const auto& controller : section["controllers"])
    {
        if (selector == 0 && controller["raid_id"] == raidId)
        {
            return controller.value("supported_raid_levels", "");
        }
    }
    return section["texts"]["unknown"];
}

std::string getRaidLevelStr(uint8_t level)
{
    return codeText(__func__, "raid_level", level);
}

std::string getPhyDevStateStr(uint8_t state)
{
    return codeText(__func__, "drive_state", state);
}

std::string getDriveMediaType(uint8_t type)
{
    return codeText(__func__, "media_type", type);
}

std::string getDriveInterfaceType(uint8_t type)
{
    return codeText(__func__, "interface_type", type);
}

std::string getDriveSpeed(uint8_t linkSpeed)
{
    return codeText(__func__, "speed", linkSpeed);
}

void simulation::load(const std::string& section) { serve(section, "RAID"); }

void simulation::reset() { session.reset(); }

std::map<std::string, unsigned> simulation::calls()
{
    return session ? session->calls : std::map<std::string, unsigned>{};
}

} // namespace vontel
