// SPDX-License-Identifier: Apache-2.0
#include "simulation/control.hpp"
#include "simulation/records.hpp"
#include "simulation/section.hpp"
#include "vontel.hpp"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>

namespace vontel
{

namespace
{

using simulation::Json;

constexpr auto sectionVariable = "MORVATH_SIM_RAID";
constexpr auto success = 0;
constexpr auto refused = -1;

/** A section in use. It is kept as it is written and read by every call. */
struct Session
{
    Json section;
    std::map<std::string, unsigned> calls;
};

/** The library has no object to hold what it serves, hence the static one. */
std::optional<Session> session;

Json readSection(const std::string& text, const std::string& name)
{
    try
    {
        auto section = Json::parse(text);
        simulation::check(section);
        return section;
    }
    catch (const simulation::Mistake& mistake)
    {
        throw std::runtime_error(name + ": " + mistake.place + ": " +
                                 mistake.what());
    }
    catch (const Json::exception& error)
    {
        throw std::runtime_error(name + ": " + error.what());
    }
}

Json sectionOfEnvironment()
{
    const auto* file = std::getenv(sectionVariable);
    if (!file || !*file)
    {
        return {{"manager_present", false}};
    }
    std::ifstream stream(file, std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(stream), {});
    if (!stream)
    {
        throw std::runtime_error(file + std::string(": cannot be read"));
    }
    return readSection(text, file);
}

/** What has a key; without it null, which has no elements and no members. */
const Json& at(const Json& json, std::string_view key)
{
    static const Json none;
    const auto found = json.find(key);
    return found == json.end() ? none : *found;
}

/** The element of a list that has an id; null without it. */
const Json& withId(const Json& list, std::string_view idKey, uint32_t id)
{
    static const Json none;
    const auto found = std::ranges::find_if(
        list, [&](const Json& element) { return element[idKey] == id; });
    return found == list.end() ? none : *found;
}

/** The section, after an operation was counted. */
const Json& counted(const std::string& operation)
{
    if (!session)
    {
        session = Session{sectionOfEnvironment(), {}};
    }
    ++session->calls[operation];
    return session->section;
}

bool hasManager(const Json& section)
{
    return section.value("manager_present", true);
}

/** The result of an operation: a fault decides it, or else the action does. */
int resultOf(const std::string& operation, const auto& action)
{
    const auto& section = counted(operation);
    const auto call = session->calls[operation];
    for (const auto& fault : at(section, "faults"))
    {
        if (fault["operation"] == operation &&
            fault.value("call", call) == call)
        {
            return fault["result"];
        }
    }
    return action(section);
}

template <typename Id>
int listIds(const Json& list, std::string_view idKey, std::vector<Id>& ids)
{
    for (const auto& element : list)
    {
        ids.push_back(element[idKey].template get<Id>());
    }
    return success;
}

/** Likewise for operations on one controller. */
int onController(const char* operation, uint8_t selector, uint32_t raidId,
                 const auto& action)
{
    return resultOf(operation, [&](const Json& section) {
        const auto& controller =
            withId(at(section, "controllers"), "raid_id", raidId);
        return selector != 0 || !hasManager(section) || controller.is_null()
                   ? refused
                   : action(controller);
    });
}

int listDrives(const char* operation, uint8_t selector, uint32_t raidId,
               const char* list, const char* idKey, std::vector<uint16_t>& ids)
{
    return onController(operation, selector, raidId,
                        [&](const Json& controller) {
                            return listIds(at(controller, list), idKey, ids);
                        });
}

template <typename Record>
int fillFrom(const Json& description, const simulation::RecordKind& kind,
             const Record& blank, Record& record)
{
    if (description.is_null())
    {
        return refused;
    }
    record = blank;
    simulation::fill(description, kind, record.bytes);
    return success;
}

std::string unknownText(const Json& section)
{
    const auto& text = at(at(section, "texts"), "unknown");
    return text.is_null() ? "Unknown" : text.get<std::string>();
}

std::string textOf(const char* operation, std::string_view kind, uint8_t code)
{
    const auto& section = counted(operation);
    const auto& text = at(at(at(section, "texts"), kind), std::to_string(code));
    return text.is_null() ? unknownText(section) : text.get<std::string>();
}

} // namespace

int checkRaidMgrExist() { return resultOf(__func__, hasManager); }

int getRaidIdList(uint8_t selector, std::vector<uint32_t>& raidIds)
{
    return resultOf(__func__, [&](const Json& section) {
        return selector == 0 && hasManager(section)
                   ? listIds(at(section, "controllers"), "raid_id", raidIds)
                   : refused;
    });
}

int getRaidInfoById(uint8_t selector, uint32_t raidId, RAIDInfo_T* info)
{
    return onController(
        __func__, selector, raidId, [&](const Json& controller) {
            return fillFrom(controller, simulation::controllers, {}, *info);
        });
}

int getPhyDevIdList(uint8_t selector, uint32_t raidId,
                    std::vector<uint16_t>& deviceIds)
{
    return listDrives(__func__, selector, raidId, "physical", "device_id",
                      deviceIds);
}

int getPhyDevInfoById(uint8_t selector, uint32_t raidId, uint16_t deviceId,
                      PhyDevInfo_T* info)
{
    return onController(
        __func__, selector, raidId, [&](const Json& controller) {
            return fillFrom(
                withId(at(controller, "physical"), "device_id", deviceId),
                simulation::physicalDrives, simulation::blankDrive(raidId),
                *info);
        });
}

int getLogDevIdList(uint8_t selector, uint32_t raidId,
                    std::vector<uint16_t>& logicalIds)
{
    return listDrives(__func__, selector, raidId, "logical", "id", logicalIds);
}

int getLogDevInfoById(uint8_t selector, uint32_t raidId, uint16_t logicalId,
                      LogicalDevInfo_T* info)
{
    return onController(
        __func__, selector, raidId, [&](const Json& controller) {
            return fillFrom(withId(at(controller, "logical"), "id", logicalId),
                            simulation::logicalDrives, {}, *info);
        });
}

int getRaidConf(std::string vendor, std::string device, std::string subVendor,
                std::string subDevice, std::string& first, std::string& second,
                std::string& third, std::string& fourth)
{
    return resultOf(__func__, [&](const Json& section) {
        for (const auto& entry : at(section, "configuration"))
        {
            if (entry["vendor"] == vendor && entry["device"] == device &&
                entry["subvendor"] == subVendor &&
                entry["subdevice"] == subDevice)
            {
                const auto& outputs = entry["outputs"];
                first = outputs[0];
                second = outputs[1];
                third = outputs[2];
                fourth = outputs[3];
                return 1;
            }
        }
        return 0;
    });
}

std::string getSupportRaidLevels(uint8_t selector, uint32_t raidId)
{
    const auto& section = counted(__func__);
    const auto& controller =
        withId(at(section, "controllers"), "raid_id", raidId);
    return selector == 0 && !controller.is_null()
               ? controller.value("supported_raid_levels", "")
               : unknownText(section);
}

std::string getRaidLevelStr(uint8_t level)
{
    return textOf(__func__, "raid_level", level);
}

std::string getPhyDevStateStr(uint8_t state)
{
    return textOf(__func__, "drive_state", state);
}

std::string getDriveMediaType(uint8_t mediaType)
{
    return textOf(__func__, "media_type", mediaType);
}

std::string getDriveInterfaceType(uint8_t interfaceType)
{
    return textOf(__func__, "interface_type", interfaceType);
}

std::string getDriveSpeed(uint8_t linkSpeed)
{
    return textOf(__func__, "speed", linkSpeed);
}

void simulation::load(const std::string& section)
{
    session = Session{readSection(section, "RAID"), {}};
}

void simulation::reset() { session.reset(); }

std::map<std::string, unsigned> simulation::calls()
{
    return session ? session->calls : std::map<std::string, unsigned>{};
}

} // namespace vontel
