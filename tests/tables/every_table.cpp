#include "morvath.h"
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
    const auto outcome = outcomeOf([&table] { return table.read(); });
    return outcome + (table.records ? ", stored, " : ", not stored, ") +
           std::to_string(table.count);
}

struct Table
{
    const char* what;
    std::string (*read)();
    const char* withoutObjects;
    const char* withDyingService;
};

constexpr auto failed = "-1, not stored, 0";
constexpr auto empty = "0, stored, 0";
constexpr auto broken = "bus error, not stored, 1";

const Table tables[]{
    {"power supplies", read<getPsuTableInfo, freePsuInfoEntry>, failed, broken},
    {"slots", read<getPcieTableInfo, freePcieInfoEntry>, empty, broken},
    {"adapters", read<getNetAdapterTableInfo, free_adapter_entry_content>,
     failed, broken},
    {"GPUs", read<getGpuInfoEntry, freeGpuInfoEntry>, failed, broken},
    {"memory", read<getMemoryTableInfo, freeMemInfoEntry>, empty, broken},
    {"processors", read<getCpuTableInfo, freeCpuInfoEntry>, empty, broken},
    {"temperatures", read<getTempTableInfo, freeBmcSensorEntry>, failed,
     broken},
    {"fans", read<getFanTableInfo, freeBmcSensorEntry>, failed, broken},
    {"voltages", read<getVoltageTableInfo, freeBmcSensorEntry>, failed, broken},
    {"currents", read<getCurrentTableInfo, freeBmcSensorEntry>, failed, broken},
    {"powers", read<getPowerTableInfo, freeBmcSensorEntry>, failed, broken},
    {"PWMs", read<getPwmTableInfo, freeBmcSensorEntry>, failed, broken},
    {"interfaces", read<getNetworkTableInfo, freeBmcNetworkInfoEntry>, failed,
     broken},
    // Its counter is written at the end only.
    {"ports", read<getNetPortTableInfo, free_port_entry_content>, failed,
     "bus error, not stored, 0"},
};

TEST(EveryTable, NeedsItsRoot)
{
    sim::Platform platform(Machine().scenario());
    for (const auto& table : tables)
    {
        EXPECT_EQ(table.read(), table.withoutObjects) << table.what;
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
        EXPECT_EQ(table.read(), table.withDyingService) << table.what;
    }
}

template <typename Record>
void expectReleased(void (*release)(Record*),
                    const std::vector<char * Record::*>& texts)
{
    Record record;
    std::memset(&record, 0x5a, sizeof(record));
    for (const auto text : texts)
    {
        record.*text = strdup("text");
    }
    release(&record);
    release(&record);
    release(nullptr);
    for (const auto text : texts)
    {
        EXPECT_EQ(record.*text, nullptr);
        std::memset(&(record.*text), 0x5a, sizeof(char*));
    }
    Record untouched;
    std::memset(&untouched, 0x5a, sizeof(untouched));
    EXPECT_EQ(std::memcmp(&record, &untouched, sizeof(record)), 0);
}

TEST(EveryTable, ReleasesTheTextsOfARecordOnce)
{
    using Psu = PsuInfoEntry;
    expectReleased(freePsuInfoEntry,
                   {&Psu::name, &Psu::manufacturer, &Psu::partNumber,
                    &Psu::serialNumber, &Psu::rating, &Psu::firmwareVersion});
    using Pcie = PcieInfoEntry;
    expectReleased(freePcieInfoEntry,
                   {&Pcie::name, &Pcie::manufacturer, &Pcie::locationCode});
    using Adapter = NetAdapterInfoEntry;
    expectReleased(free_adapter_entry_content,
                   {&Adapter::name, &Adapter::manufacturer, &Adapter::model,
                    &Adapter::subModel, &Adapter::networkTech});
    using Gpu = GpuInfoEntry;
    expectReleased(freeGpuInfoEntry, {&Gpu::cardName, &Gpu::manufacturer,
                                      &Gpu::partNumber, &Gpu::serialNumber});
    using Memory = MemInfoEntry;
    expectReleased(freeMemInfoEntry,
                   {&Memory::name, &Memory::manufacturer, &Memory::partNumber,
                    &Memory::serialNumber, &Memory::memoryType,
                    &Memory::formFactor, &Memory::bankLocator,
                    &Memory::deviceLocator, &Memory::ecc});
    using Cpu = CpuInfoEntry;
    expectReleased(freeCpuInfoEntry,
                   {&Cpu::name, &Cpu::manufacturer, &Cpu::version,
                    &Cpu::partNumber, &Cpu::serialNumber, &Cpu::architecture});
    using Sensor = BmcSensorEntry;
    expectReleased(freeBmcSensorEntry,
                   {&Sensor::name, &Sensor::value, &Sensor::criticalHigh,
                    &Sensor::criticalLow, &Sensor::warningHigh,
                    &Sensor::warningLow, &Sensor::minValue, &Sensor::maxValue,
                    &Sensor::unit});
    using Network = BmcNetworkInfoEntry;
    expectReleased(freeBmcNetworkInfoEntry,
                   {&Network::ifName, &Network::macAddress, &Network::ipAddress,
                    &Network::defaultGateway, &Network::netmask});
    using Port = PortInfoEntry;
    expectReleased(free_port_entry_content,
                   {&Port::adapterName, &Port::name, &Port::macAddress,
                    &Port::rootBdf, &Port::portType, &Port::dropRatio});
}

} // namespace
} // namespace morvath::tests
