#include "support/records.hpp"

#include <cstring>

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

struct Table
{
    std::string (*read)();
    const char* withoutObjects;
};

constexpr auto failed = "-1, not stored, 0";
constexpr auto empty = "0, stored, 0";

const Table tables[]{
    {read<getPsuTableInfo, freePsuInfoEntry>, failed},
    {read<getPcieTableInfo, freePcieInfoEntry>, empty},
    {read<getNetAdapterTableInfo, free_adapter_entry_content>, failed},
    {read<getGpuInfoEntry, freeGpuInfoEntry>, failed},
    {read<getMemoryTableInfo, freeMemInfoEntry>, empty},
    {read<getCpuTableInfo, freeCpuInfoEntry>, empty},
    {read<getTempTableInfo, freeBmcSensorEntry>, failed},
    {read<getFanTableInfo, freeBmcSensorEntry>, failed},
    {read<getVoltageTableInfo, freeBmcSensorEntry>, failed},
    {read<getCurrentTableInfo, freeBmcSensorEntry>, failed},
    {read<getPowerTableInfo, freeBmcSensorEntry>, failed},
    {read<getPwmTableInfo, freeBmcSensorEntry>, failed},
    {read<getNetworkTableInfo, freeBmcNetworkInfoEntry>, failed},
    {read<getNetPortTableInfo, free_port_entry_content>, failed},
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
                                    ? "bus-error, not stored, 0"
                                    : "bus-error, not stored, 1")
            << &table - tables;
    }
}

void fill(char*& text)
{
    text = strdup("text");
}

void fill(auto& number)
{
    number = 1;
}

/** Texts are released once, and nothing else changes. */
template <typename Record>
void expectRelease(void (*release)(Record*))
{
    Record record{};
    release(nullptr);
    release(&record);
    std::apply([](auto&... fields) { (fill(fields), ...); }, fieldsOf(record));
    auto expected = lineOf(record);
    for (auto place = expected.find("text"); place != std::string::npos;
         place = expected.find("text"))
    {
        expected.replace(place, 4, "null");
    }
    for (int time = 0; time < 2; ++time)
    {
        release(&record);
        EXPECT_EQ(lineOf(record), expected);
    }
}

TEST(EveryRecord, IsReleasedOnce)
{
    expectRelease(freePsuInfoEntry);
    expectRelease(freePcieInfoEntry);
    expectRelease(free_adapter_entry_content);
    expectRelease(freeGpuInfoEntry);
    expectRelease(freeMemInfoEntry);
    expectRelease(freeCpuInfoEntry);
    expectRelease(freeBmcSensorEntry);
    expectRelease(freeBmcNetworkInfoEntry);
    expectRelease(free_port_entry_content);
    expectRelease(freeHddInfoEntry);
    expectRelease(freeRaidControllerEntry);
    expectRelease(free_raid_hdd_entry);
}

} // namespace
} // namespace morvath::tests
