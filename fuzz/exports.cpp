// SPDX-License-Identifier: Apache-2.0
#include "fuzz/exports.hpp"

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
    read(getDbusPropertyVectorString, "a.b", "/a", "a.b",
         argument(input).c_str());
    return 0;
}

int32_t readInterface(Input& input)
{
    read(getDbusInterface, input.oneOf(services).c_str(), "/", "a.b");
    return 0;
}

/** What the table engine stores, released however it ends. */
struct Table
{
    std::size_t columns;
    int32_t before;
    char*** rows = nullptr;
    int32_t counter = before;

    ~Table()
    {
        for (int32_t index = 0; index < counter - before; ++index)
        {
            releaseTexts(rows[index], columns);
        }
        std::free(rows);
    }
};

int32_t readRows(Input& input)
{
    std::vector<std::string> names(input.below(properties.size()));
    std::vector<const char*> list;
    for (auto& name : names)
    {
        list.push_back((name = input.oneOf(properties)).c_str());
    }
    Table table{list.size(), input.number<int8_t>()};
    return getDbusTableData("/", "a.b", list.data(),
                            static_cast<int32_t>(list.size()), &table.rows,
                            &table.counter);
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
#define TABLE(function) {#function, readTable<function>}

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
    {"getCommonSensorTableInfo", readTable<readSensors>},
    {"getDbusInterface", readInterface},
    {"getDbusPropertyVectorString", readTexts}, {"getDbusTableData", readRows},
    {"getLastStr", readLastPart},
    TABLE(getCpuTableInfo), TABLE(getCurrentTableInfo), TABLE(getFanTableInfo),
    TABLE(getGpuInfoEntry), TABLE(getMemoryTableInfo),
    TABLE(getNetAdapterTableInfo), TABLE(getNetPortTableInfo),
    TABLE(getNetworkTableInfo), TABLE(getPcieTableInfo),
    TABLE(getPowerTableInfo), TABLE(getPsuTableInfo), TABLE(getPwmTableInfo),
    TABLE(getTempTableInfo), TABLE(getVoltageTableInfo),
    // These ask the RAID management library.
    TABLE(getHddTableInfo),
    TABLE(getRaidControllerInfo),
    TABLE(getRaidHddTableInfo),
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
    catch (const Error& error)
    {
        code = error.code();
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

std::span<const Export> exports() { return all; }

std::span<const Export> raidExports() { return exports().last(raidCount); }

void run(std::span<const Export> among, Input input)
{
    const auto& one = among[input.below(among.size())];
    answerFrom(&input);
    runOne(one, input);
    answerFrom(nullptr);
}

} // namespace morvath::fuzz
