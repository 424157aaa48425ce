// SPDX-License-Identifier: Apache-2.0
#include "raid/vontel.hpp"

#include "sim/vontel/session.hpp"

namespace vontel
{

namespace
{

using morvath::sim::CodeKind;
using morvath::sim::FourTexts;
using morvath::sim::RaidController;
using morvath::sim::Session;

constexpr int success = 0;
constexpr int refused = -1;

/** The result of an operation: a fault decides it, or else the action does. */
template <typename Action>
int resultOf(const char* operation, const Action& action)
{
    Session& session = Session::current();
    const auto decided = session.count(operation);
    return decided ? *decided : action(session);
}

/** Counts an operation that cannot fail. */
const Session& counted(const char* operation)
{
    Session& session = Session::current();
    session.count(operation);
    return session;
}

/** Likewise for operations on one controller. */
template <typename Action>
int onController(const char* operation, uint8_t selector, uint32_t raidId,
                 const Action& action)
{
    return resultOf(operation, [&](const Session& session) {
        const RaidController* controller = session.controller(raidId);
        return selector == 0 && session.section().hasManager && controller
                   ? action(*controller)
                   : refused;
    });
}

template <auto Drives>
int listDrives(const char* operation, uint8_t selector, uint32_t raidId,
               std::vector<uint16_t>& ids)
{
    return onController(operation, selector, raidId,
                        [&](const RaidController& controller) {
                            for (const auto& drive : controller.*Drives)
                            {
                                ids.push_back(drive.id);
                            }
                            return success;
                        });
}

template <auto Drives, typename Record>
int readDrive(const char* operation, uint8_t selector, uint32_t raidId,
              uint16_t id, Record* record)
{
    return onController(operation, selector, raidId,
                        [&](const RaidController& controller) {
                            for (const auto& drive : controller.*Drives)
                            {
                                if (drive.id == id)
                                {
                                    *record = drive.record;
                                    return success;
                                }
                            }
                            return refused;
                        });
}

} // namespace

int checkRaidMgrExist()
{
    return resultOf(__func__, [](const Session& session) {
        return session.section().hasManager ? 1 : 0;
    });
}

int getRaidIdList(uint8_t selector, std::vector<uint32_t>& raidIds)
{
    return resultOf(__func__, [&](const Session& session) {
        if (selector != 0 || !session.section().hasManager)
        {
            return refused;
        }
        for (const RaidController& controller : session.section().controllers)
        {
            raidIds.push_back(controller.raidId);
        }
        return success;
    });
}

int getRaidInfoById(uint8_t selector, uint32_t raidId, RAIDInfo_T* info)
{
    return onController(__func__, selector, raidId,
                        [&](const RaidController& controller) {
                            *info = controller.info;
                            return success;
                        });
}

int getPhyDevIdList(uint8_t selector, uint32_t raidId,
                    std::vector<uint16_t>& deviceIds)
{
    return listDrives<&RaidController::physicalDrives>(__func__, selector,
                                                       raidId, deviceIds);
}

int getPhyDevInfoById(uint8_t selector, uint32_t raidId, uint16_t deviceId,
                      PhyDevInfo_T* info)
{
    return readDrive<&RaidController::physicalDrives>(__func__, selector,
                                                      raidId, deviceId, info);
}

int getLogDevIdList(uint8_t selector, uint32_t raidId,
                    std::vector<uint16_t>& logicalIds)
{
    return listDrives<&RaidController::logicalDrives>(__func__, selector,
                                                      raidId, logicalIds);
}

int getLogDevInfoById(uint8_t selector, uint32_t raidId, uint16_t logicalId,
                      LogicalDevInfo_T* info)
{
    return readDrive<&RaidController::logicalDrives>(__func__, selector, raidId,
                                                     logicalId, info);
}

int getRaidConf(std::string vendor, std::string device, std::string subVendor,
                std::string subDevice, std::string& first, std::string& second,
                std::string& third, std::string& fourth)
{
    return resultOf(__func__, [&](const Session& session) {
        const auto& configuration = session.section().configuration;
        const auto found =
            configuration.find(FourTexts{vendor, device, subVendor, subDevice});
        if (found == configuration.end())
        {
            return 0;
        }
        const FourTexts& outputs = found->second;
        first = outputs[0];
        second = outputs[1];
        third = outputs[2];
        fourth = outputs[3];
        return 1;
    });
}

std::string getSupportRaidLevels(uint8_t selector, uint32_t raidId)
{
    const Session& session = counted(__func__);
    const RaidController* controller = session.controller(raidId);
    return selector == 0 && controller ? controller->supportedLevels
                                       : session.section().texts.unknown;
}

std::string getRaidLevelStr(uint8_t level)
{
    return counted(__func__).text(CodeKind::raidLevel, level);
}

std::string getPhyDevStateStr(uint8_t state)
{
    return counted(__func__).text(CodeKind::driveState, state);
}

std::string getDriveMediaType(uint8_t mediaType)
{
    return counted(__func__).text(CodeKind::mediaType, mediaType);
}

std::string getDriveInterfaceType(uint8_t interfaceType)
{
    return counted(__func__).text(CodeKind::interfaceType, interfaceType);
}

std::string getDriveSpeed(uint8_t linkSpeed)
{
    return counted(__func__).text(CodeKind::speed, linkSpeed);
}

} // namespace vontel
