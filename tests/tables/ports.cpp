// SPDX-License-Identifier: Apache-2.0
#include "support/records.hpp"

#include <csignal>

namespace morvath::tests::ports
{

constexpr auto service = "xyz.openbmc_project.Smbios.MDR_V2";
constexpr auto portInterface = "xyz.openbmc_project.Inventory.Item.NetworkPort";
const Json adapter{
    {"xyz.openbmc_project.Inventory.Item.NetAdapter", Json::object()}};
const std::string root =
    "/xyz/openbmc_project/inventory/system/chassis/motherboard/";
const Json properties{{"MaxSpeed", property("t", 25'000'000'000)},
                      {"LldpEnabled", property("b", true)},
                      {"PhyLink", property("b", false)},
                      {"Packets", property("t", 4)},
                      {"Drop", property("t", 3)}};

/** An adapter with one port. */
Machine onePort(const Json& changes)
{
    return Machine()
        .owns(root + "_6eic_2d1", service, adapter)
        .owns(root + "_6eic_2d1/NetworkPorts/port1", service,
              {{portInterface, changed(properties, changes)}});
}

TEST(NetworkPorts, ConvertTheirNumbers)
{
    const auto ratioOf = [](uint64_t packets, uint64_t drops) {
        return Json{{"Packets", property("t", packets)},
                    {"Drop", property("t", drops)}};
    };
    struct
    {
        Json changes;
        const char* outcome;
        std::string fields;
    } const cases[]{
        {{}, "0", "25|1|0|0.8%"},
        {ratioOf(1000, 5), "0", "25|1|0|0.0%"},
        {ratioOf(0, 7), "0", "25|1|0|-"},
        {ratioOf(1, UINT64_MAX), "0", "25|1|0|18446744073709551616.0%"},
        {{{"MaxSpeed", property("t", 999'999'999)}}, "0", "0|1|0|0.8%"},
        {{{"MaxSpeed", property("t", 4'294'967'295'999'999'999)}},
         "0",
         "4294967295|1|0|0.8%"},
        {{{"MaxSpeed", nullptr}}, nullText, "0|0|0|null"},
        {{{"Packets", nullptr}}, nullText, "25|1|0|null"},
        {{{"Drop", text("some")}}, "invalid argument: stoull", "25|1|0|null"},
    };
    for (const auto& [changes, outcome, fields] : cases)
    {
        EXPECT_EQ(
            linesOf<getNetPortTableInfo>(onePort(changes)),
            (Lines{outcome, "0|nic-1|port1|null|null|null|" + fields + "|0|0"}))
            << changes;
    }
}

TEST(NetworkPorts, EndAtAnAdapterThatIsNotListed)
{
    const std::string port = "0|nic-1|port1|null|null|null|25|1|0|0.8%|0|0";
    // The first query is for the adapters, of which the second has the port.
    const Lines cases[]{{"-1"}, {"0"}, {"0"}, {"0", port}};
    for (const auto& lines : cases)
    {
        const auto call = 1 + (&lines - cases);
        const auto machine =
            onePort({})
                .owns(root + "A", service, adapter)
                .owns(root + "a", service, adapter)
                .fault({{"member", "GetSubTree"}, {"call", call}},
                       {{"error", "com.example.Busy"}});
        EXPECT_EQ(linesOf<getNetPortTableInfo>(machine), lines) << call;
    }
}

TEST(NetworkPorts, SetTheCounterUnlessThereAreNoAdapters)
{
    EXPECT_EQ(linesOf<getNetPortTableInfo>(onePort({}), 5).size(), 2u);
    const std::pair<Machine, const char*> cases[]{
        {Machine().owns(root + "a", service, adapter), "0 array 0"},
        {Machine().owns(root + "a", service, {{"a.b", Json::object()}}),
         "0 untouched 5"},
        {Machine().owns(root + "a", "com.example.Inventory", adapter),
         "0 untouched 5"},
    };
    for (const auto& [machine, expected] : cases)
    {
        const sim::Platform platform(machine.scenario());
        EXPECT_EQ(outputsOf<getNetPortTableInfo>(5), expected);
    }
}

TEST(Lldp, IsSwitchedForOnePort)
{
    sim::Platform platform(sim::Scenario::standard());
    const auto state = [&platform] {
        return platform.property(service, root + "nic1/NetworkPorts/port0",
                                 portInterface, "LldpEnabled");
    };
    EXPECT_EQ(setLldpEnalbed("nic1", "port0", 0), 0);
    EXPECT_EQ(state(), false);
    EXPECT_EQ(setLldpEnalbed("nic1", "port0", 256), 0);
    EXPECT_EQ(state(), true);
    EXPECT_EQ(setLldpEnalbed("nic2", "port0", 1), -1);
    EXPECT_THROW(setLldpEnalbed("nic-1", "port0", 1),
                 sdbusplus::exception::SdBusError);
}

TEST(LldpDeathTest, AbortsForAPathThatIsTooLong)
{
    const auto room = 127 - root.size() - std::string("/NetworkPorts/p").size();
    const std::string name(room, 'n');
    EXPECT_EQ(setLldpEnalbed(name.c_str(), "p", 1), -1);
    EXPECT_EXIT(setLldpEnalbed(name.c_str(), "pp", 1),
                testing::KilledBySignal(SIGABRT), "");
}

} // namespace morvath::tests::ports
