// SPDX-License-Identifier: Apache-2.0
#include "simulation/control.hpp"
#include "simulation/section.hpp"

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
    return parse(text, file);
}

/** The section, after an operation was counted. */
const Section& counted(const std::string& operation)
{
    if (!session)
    {
        session = Session{sectionOfEnvironment()};
    }
    ++session->calls[operation];
    return session->section;
}

/** The result of an operation: a fault decides it, or else the action does. */
int resultOf(const std::string& operation, const auto& action)
{
    const auto& section = counted(operation);
    const auto call = session->calls[operation];
    const auto fault =
        std::ranges::find_if(section.faults, [&](const Fault& one) {
            return one.operation == operation &&
                   (one.call == 0 || one.call == call);
        });
    return fault == section.faults.end() ? action(section) : fault->result;
}

const auto* withId(const auto& items, uint32_t id)
{
    const auto found = std::ranges::find_if(
        items, [&](const auto& item) { return item.id == id; });
    return found == items.end() ? nullptr : &*found;
}

int onController(const char* operation, uint8_t selector, uint32_t raidId,
                 const auto& action)
{
    return resultOf(operation, [&](const Section& section) {
        const auto* controller = withId(section.controllers, raidId);
        const auto isThere = section.hasManager && selector == 0 && controller;
        return isThere ? action(*controller) : refused;
    });
}

template <typename Id>
int listIds(const auto& items, std::vector<Id>& ids)
{
    for (const auto& item : items)
    {
        ids.push_back(static_cast<Id>(item.id));
    }
    return success;
}

template <typename Drives>
int driveIds(const char* operation, uint8_t selector, uint32_t raidId,
             Drives Controller::*drives, std::vector<uint16_t>& ids)
{
    return onController(operation, selector, raidId,
                        [&](const Controller& controller) {
                            return listIds(controller.*drives, ids);
                        });
}

template <typename Drives>
int driveInfo(const char* operation, uint8_t selector, uint32_t raidId,
              Drives Controller::*drives, uint16_t id, auto* info)
{
    return onController(operation, selector, raidId,
                        [&](const Controller& controller) {
                            const auto* drive = withId(controller.*drives, id);
                            *info = drive ? drive->record : *info;
                            return drive ? success : refused;
                        });
}

std::string codeText(const char* operation, CodeKind kind, uint8_t code)
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
    return resultOf(__func__, [&](const Section& section) {
        return selector == 0 && section.hasManager
                   ? listIds(section.controllers, raidIds)
                   : refused;
    });
}

int getRaidInfoById(uint8_t selector, uint32_t raidId, RAIDInfo_T* info)
{
    return onController(__func__, selector, raidId,
                        [&](const Controller& controller) {
                            *info = controller.record;
                            return success;
                        });
}

int getPhyDevIdList(uint8_t selector, uint32_t raidId,
                    std::vector<uint16_t>& deviceIds)
{
    return driveIds(__func__, selector, raidId, &Controller::physical,
                    deviceIds);
}

int getPhyDevInfoById(uint8_t selector, uint32_t raidId, uint16_t deviceId,
                      PhyDevInfo_T* info)
{
    return driveInfo(__func__, selector, raidId, &Controller::physical,
                     deviceId, info);
}

int getLogDevIdList(uint8_t selector, uint32_t raidId,
                    std::vector<uint16_t>& logicalIds)
{
    return driveIds(__func__, selector, raidId, &Controller::logical,
                    logicalIds);
}

int getLogDevInfoById(uint8_t selector, uint32_t raidId, uint16_t logicalId,
                      LogicalDevInfo_T* info)
{
    return driveInfo(__func__, selector, raidId, &Controller::logical,
                     logicalId, info);
}

int getRaidConf(std::string vendor, std::string device, std::string subVendor,
                std::string subDevice, std::string& first, std::string& second,
                std::string& third, std::string& fourth)
{
    return resultOf(__func__, [&](const Section& section) {
        const auto entry =
            std::ranges::find(section.configuration,
                              std::array{vendor, device, subVendor, subDevice},
                              &Configuration::identifiers);
        if (entry == section.configuration.end())
        {
            return 0;
        }
        std::tie(first, second, third, fourth) = std::tuple_cat(entry->outputs);
        return 1;
    });
}

std::string getSupportRaidLevels(uint8_t selector, uint32_t raidId)
{
    const auto& section = counted(__func__);
    const auto* controller = withId(section.controllers, raidId);
    return selector == 0 && controller ? controller->levels : section.unknown;
}

std::string getRaidLevelStr(uint8_t level)
{
    return codeText(__func__, raidLevel, level);
}

std::string getPhyDevStateStr(uint8_t state)
{
    return codeText(__func__, driveState, state);
}

std::string getDriveMediaType(uint8_t type)
{
    return codeText(__func__, mediaType, type);
}

std::string getDriveInterfaceType(uint8_t type)
{
    return codeText(__func__, interfaceType, type);
}

std::string getDriveSpeed(uint8_t linkSpeed)
{
    return codeText(__func__, speed, linkSpeed);
}

void simulation::load(const std::string& section)
{
    session = Session{parse(section, "RAID")};
}

void simulation::reset() { session.reset(); }

std::map<std::string, unsigned> simulation::calls()
{
    return session ? session->calls : std::map<std::string, unsigned>{};
}

} // namespace vontel
