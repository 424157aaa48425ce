// SPDX-License-Identifier: Apache-2.0
#include "support/records.hpp"

namespace morvath::tests
{
namespace
{

/** Outcome, records and counter of one read. */
template <auto Get, auto Release>
std::string read()
{
    Records<Get, Release> table;
    const auto outcome = outcomeOf([&] { return table.read(); });
    return outcome + (table.records ? ", stored, " : ", not stored, ") +
           std::to_string(table.count);
}

/** The first record, released twice. */
template <auto Get, auto Release>
std::string release()
{
    Records<Get, Release> table;
    if (table.read() != 0)
    {
        return "not read";
    }
    Release(nullptr);
    Release(&table.records[0]);
    Release(&table.records[0]);
    return lineOf(table.records[0]);
}

struct Table
{
    std::string (*read)();
    std::string (*release)();
    const char* withoutObjects;
    const char* released;
};

template <auto Get, auto Release>
constexpr Table table(const char* withoutObjects, const char* released)
{
    return {read<Get, Release>, release<Get, Release>, withoutObjects,
            released};
}

constexpr auto failed = "-1, not stored, 0";
constexpr auto empty = "0, stored, 0";
constexpr auto sensor =
    "0|null|null|0|0|null|null|0|0|null|null|null|null|null|0|0";

const Table tables[]{
    table<getPsuTableInfo, freePsuInfoEntry>(
        failed, "0|null|null|null|null|null|null|0|0"),
    table<getPcieTableInfo, freePcieInfoEntry>(empty, "0|null|null|null|1|0|0"),
    table<getNetAdapterTableInfo, free_adapter_entry_content>(
        failed, "0|null|null|null|null|null|2|0|0"),
    table<getGpuInfoEntry, freeGpuInfoEntry>(
        failed, "0|null|null|null|null|49152|52|38|187|0|0"),
    table<getMemoryTableInfo, freeMemInfoEntry>(
        empty, "0|null|null|null|null|null|null|null|null|null|5600|67108864|"
               "64|1|0|0"),
    table<getCpuTableInfo, freeCpuInfoEntry>(
        empty, "0|null|null|null|null|null|null|2600|3800|32|64|2048|2048|"
               "32768|131072|1|0|0"),
    table<getTempTableInfo, freeBmcSensorEntry>(failed, sensor),
    table<getFanTableInfo, freeBmcSensorEntry>(failed, sensor),
    table<getVoltageTableInfo, freeBmcSensorEntry>(failed, sensor),
    table<getCurrentTableInfo, freeBmcSensorEntry>(failed, sensor),
    table<getPowerTableInfo, freeBmcSensorEntry>(failed, sensor),
    table<getPwmTableInfo, freeBmcSensorEntry>(failed, sensor),
    table<getNetworkTableInfo, freeBmcNetworkInfoEntry>(
        failed, "0|null|null|null|null|null|1|1|0|0|0"),
    table<getNetPortTableInfo, free_port_entry_content>(
        failed, "0|null|null|null|null|null|25|1|1|null|0|0"),
};

TEST(EveryTable, NeedsItsRoot)
{
    sim::Platform platform(Machine().scenario());
    for (const auto& table : tables)
    {
        EXPECT_EQ(table.read(), table.withoutObjects) << &table - tables;
    }
}

TEST(EveryTable, RaisesWhenAServiceDiesBetweenListingAndReading)
{
    const auto dying =
        Machine::server()
            .fault({{"member", "GetAll"}, {"call", 2}}, {{"die", true}})
            .scenario();
    for (const auto& table : tables)
    {
        sim::Platform platform(dying);
        // The counter of the ports is written at the end only.
        EXPECT_EQ(table.read(), table.read == (std::end(tables) - 1)->read
                                    ? "bus error, not stored, 0"
                                    : "bus error, not stored, 1")
            << &table - tables;
    }
}

TEST(EveryTable, ReleasesTheTextsOfARecordOnce)
{
    sim::Platform platform(sim::Scenario::standard());
    for (const auto& table : tables)
    {
        EXPECT_EQ(table.release(), table.released) << &table - tables;
    }
}

} // namespace
} // namespace morvath::tests
