// SPDX-License-Identifier: Apache-2.0
#include "fuzz/exports.hpp"

#include "bus/row_set.hpp"
#include "fuzz/call.hpp"
#include "fuzz/peer.hpp"

#include <sdbusplus/exception.hpp>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace morvath::fuzz
{
namespace
{

int32_t readTexts(Input& input)
{
    char** texts = nullptr;
    uint32_t count = 0;
    const auto code = getDbusPropertyVectorString(
        "a.b", "/a", "a.b", argument(input).c_str(), &texts, &count);
    const TextArray owner(texts, count);
    return code;
}

int32_t readInterface(Input& input)
{
    char** paths = nullptr;
    uint32_t count = 0;
    const auto code = getDbusInterface(input.oneOf(services).c_str(), "/",
                                       "a.b", &paths, &count);
    const TextArray owner(paths, count);
    return code;
}

int32_t readRows(Input& input)
{
    std::vector<std::string> names(input.below(properties.size()));
    std::vector<const char*> list;
    for (auto& name : names)
    {
        list.push_back((name = input.oneOf(properties)).c_str());
    }
    int32_t counter = input.number<int8_t>();
    return RowSet(counter).read({"/", "a.b", list});
}

int32_t readSensors(BmcSensorEntry** records, int32_t* count)
{
    return getCommonSensorTableInfo(records, count, "/", "a.b");
}

int32_t readLastPart(Input& input)
{
    const auto text = input.oneOf(values);
    const auto last = getLastStr(text);
    return text.ends_with(last) || last == "Unknown" ? 0 : 1;
}

// clang-format off
#define CALL(function) {#function, call<function>}
#define TABLE(function, release) {#function, readTable<function, release>}

constexpr Export all[]{
    CALL(_getDbusProperty), CALL(_setDbusProperty), CALL(getBMCDeviceUUID),
    CALL(getBMCFirmwareVersion), CALL(getBMCManufacturer), CALL(getBMCModel),
    CALL(getBMCPartNumber), CALL(getBMCProperty), CALL(getBMCSerialNumber),
    CALL(getBiosBootOrder0), CALL(getBiosBootOrder1), CALL(getBiosBootOrder2),
    CALL(getBiosBootOrder3), CALL(getBiosBootType), CALL(getBiosBuildDate),
    CALL(getBiosFirmwareVersion), CALL(getBiosHyperThreading),
    CALL(getBiosIPV4Support), CALL(getBiosIPV6Support), CALL(getBiosVendor),
    CALL(getBoardBuildDate), CALL(getBoardManufacturer), CALL(getBoardPartNum),
    CALL(getBoardPrettyName), CALL(getBoardSerialNum), CALL(getChassisPartNum),
    CALL(getChassisPrettyName), CALL(getChassisSerialNum),
    CALL(getCpldFirmwareVersion), CALL(getDbusPropertyBool),
    CALL(getDbusPropertyString), CALL(getDbusPropertyUint8),
    CALL(getNtpPreferServer), CALL(getNtpServerStatus),
    CALL(getPowerRestorePolicy), CALL(getProductAssetTag),
    CALL(getProductManufacturer), CALL(getProductPartNum),
    CALL(getProductPrettyName), CALL(getProductSerialNum),
    CALL(getProductVersion), CALL(getSubTree), CALL(getSystemAssetTag),
    CALL(getSystemConfModel), CALL(getSystemHostName),
    CALL(getSystemManufacturer), CALL(getSystemModel), CALL(getSystemPowerCtl),
    CALL(getSystemPowerState), CALL(getSystemSerialNumber), CALL(getSystemUUID),
    CALL(getTimeStamp), CALL(getTimeZone), CALL(setDbusPropertyBool),
    CALL(setDbusPropertyString), CALL(setDbusPropertyUint64),
    CALL(setDbusPropertyVectorString),
    CALL(setDbusPropertyVectorStringWithoutPath), CALL(setLldpEnalbed),
    CALL(setNtpServerIP), CALL(setNtpServerStatus), CALL(setPowerRestorePolicy),
    CALL(setSystemAssetTag), CALL(setSystemConfModel), CALL(setSystemHostName),
    CALL(setSystemPowerCtl), CALL(setTimeStamp),
    {"getCommonSensorTableInfo", readTable<readSensors, freeBmcSensorEntry>},
    {"getDbusInterface", readInterface},
    {"getDbusPropertyVectorString", readTexts}, {"getDbusTableData", readRows},
    {"getLastStr", readLastPart},
    TABLE(getCpuTableInfo, freeCpuInfoEntry),
    TABLE(getCurrentTableInfo, freeBmcSensorEntry),
    TABLE(getFanTableInfo, freeBmcSensorEntry),
    TABLE(getGpuInfoEntry, freeGpuInfoEntry),
    TABLE(getMemoryTableInfo, freeMemInfoEntry),
    TABLE(getNetAdapterTableInfo, free_adapter_entry_content),
    TABLE(getNetPortTableInfo, free_port_entry_content),
    TABLE(getNetworkTableInfo, freeBmcNetworkInfoEntry),
    TABLE(getPcieTableInfo, freePcieInfoEntry),
    TABLE(getPowerTableInfo, freeBmcSensorEntry),
    TABLE(getPsuTableInfo, freePsuInfoEntry),
    TABLE(getPwmTableInfo, freeBmcSensorEntry),
    TABLE(getTempTableInfo, freeBmcSensorEntry),
    TABLE(getVoltageTableInfo, freeBmcSensorEntry),
    // These ask the RAID management library.
    TABLE(getHddTableInfo, freeHddInfoEntry),
    TABLE(getRaidControllerInfo, freeRaidControllerEntry),
    TABLE(getRaidHddTableInfo, free_raid_hdd_entry),
};

#undef CALL
#undef TABLE
// clang-format on

constexpr std::size_t raidCount = 3;

constexpr int32_t lowestCode = -4;

void runOne(const Export& one, Input& input)
{
    int32_t code = 0;
    // What the header names, but for std::bad_alloc: memory is not short.
    // Anything else ends the run.
    try
    {
        code = one.call(input);
    }
    catch (const sdbusplus::exception::SdBusError&)
    {}
    catch (const std::bad_variant_access&)
    {}
    catch (const std::logic_error&)
    {
        // std::invalid_argument and std::out_of_range are such, too.
    }
    if (code < lowestCode || code > 0)
    {
        std::fprintf(stderr, "%s returned %d\n", one.name, code);
        std::abort();
    }
}

} // namespace

std::span<const Export> exports()
{
    return all;
}

std::span<const Export> raidExports()
{
    return exports().last(raidCount);
}

void run(std::span<const Export> among, Input input)
{
    const auto& one = among[input.below(among.size())];
    answerFrom(&input);
    runOne(one, input);
    answerFrom(nullptr);
}

} // namespace morvath::fuzz
