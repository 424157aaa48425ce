// SPDX-License-Identifier: Apache-2.0
#include "support/machine.hpp"
#include "support/program.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace morvath::tests::show
{

/** What the command prints; its status has to be that one. */
Json documentOf(const std::string& arguments, int status)
{
    const auto shown = morvath(arguments + " --json");
    EXPECT_EQ(shown.status, status) << arguments;
    EXPECT_NE(shown.output, "") << shown.errors;
    return Json::parse(shown.output);
}

TEST(Show, PrintsAlignedColumnsOrJson)
{
    const std::string root =
        "/xyz/openbmc_project/inventory/system/powersupply/";
    constexpr auto service = "xyz.openbmc_project.Inventory.Manager";
    constexpr auto supply = "xyz.openbmc_project.Inventory.Item.PowerSupply";
    const auto machine =
        Machine()
            .owns(root + "a", service,
                  {{supply,
                    {{"Name", text("Größe\n\x1b[31m")},
                     {"Manufacturer", text("")},
                     {"FirmwareVersion", text("1")}}}})
            .owns(root + "b", service,
                  {{supply, {{"Manufacturer", text("long enough")}}}});
    sim::Platform platform(machine.scenario());
    const auto all = morvath("show power-supplies");
    EXPECT_EQ(all.status, 0);
    EXPECT_EQ(all.errors, "");
    EXPECT_EQ(all.output,
              "NAME               MANUFACTURER  PART NUMBER  SERIAL NUMBER  "
              "RATING  FIRMWARE\n"
              "Größe\\x0a\\x1b[31m  -             -            -              "
              " 800 W  1\n"
              "b                  long enough   -            -              "
              " 800 W  -\n");

    const auto document = documentOf("show power-supplies", 0);
    EXPECT_EQ(document["time"].get<std::string>().size(), 20u);
    EXPECT_NE(document["host"], "");
    const auto& rows = document["tables"]["power-supplies"];
    EXPECT_EQ(rows[0]["name"], "Größe\n\x1b[31m");
    EXPECT_EQ(rows[0]["manufacturer"], "");
    EXPECT_EQ(rows[1]["firmwareVersion"], nullptr);
    EXPECT_EQ(morvath("show power-supplies >/dev/full").status, 1);
}

TEST(Show, HasEmptyTablesOfAllThatIsNotThere)
{
    sim::Platform platform(Machine().scenario());
    const auto document = documentOf("show --all", 0);
    EXPECT_EQ(document["tables"].size(), 17u);
    EXPECT_EQ(document["tables"]["fans"], Json::array());
    EXPECT_EQ(document["errors"], Json::array());

    const auto asked = morvath("show fans --json");
    EXPECT_EQ(asked.status, 1);
    EXPECT_EQ(asked.errors, "morvath: fans: the platform has nothing of this "
                            "kind\n");
    EXPECT_EQ(Json::parse(asked.output)["tables"], Json({{"fans", nullptr}}));
    EXPECT_EQ(morvath("show fans").output, "");

    const auto facts = morvath("get --all");
    EXPECT_EQ(facts.status, 0);
    EXPECT_EQ(facts.errors, "");
    EXPECT_NE(facts.output.find("\npower-state:           -\n"),
              facts.output.npos);
}

TEST(Faults, LeaveOneDocumentWithAllOthers)
{
    const Json faults[]{{{"error", "com.example.Refused"}},
                        {{"die", true}},
                        {{"silent", true}},
                        {{"reply", property("u", 1)}}};
    struct
    {
        const char* command;
        const char* member;
        const char* silent; // One service, as each costs the whole limit.
    } const cases[]{{"show", "GetAll", "FanSensor"},
                    {"show", "GetSubTree", "ObjectMapper"},
                    {"get", "Get", "Settings"},
                    {"get", "GetAll", "Software.BMC.Updater"},
                    {"get", "GetSubTree", "ObjectMapper"}};
    const auto server = Machine::smallServer().scenario();
    for (const auto& then : faults)
    {
        for (const auto& [command, member, silent] : cases)
        {
            Json when{{"member", member}};
            if (then.contains("silent"))
            {
                when["service"] = std::string("xyz.openbmc_project.") + silent;
            }
            sim::Platform platform(withFault(server, when, then));
            const auto document =
                documentOf(std::string(command) + " --all --timeout 0.5", 1);
            EXPECT_FALSE(document["errors"].empty());
            const auto isGet = std::string("get") == command;
            const auto& read = document[isGet ? "facts" : "tables"];
            const std::size_t unread = std::ranges::count(read, nullptr);
            EXPECT_LT(unread, read.size()) << command << member << then;
        }
    }
}

TEST(Show, NamesWhatFailsAndShowsTheOthers)
{
    const std::string sensors = "/xyz/openbmc_project/sensors/fan_tach/";
    const auto machine =
        Machine::server()
            .fault({{"path", sensors + "FAN1"}}, {{"silent", true}})
            .fault({{"path", sensors + "FAN2"}},
                   {{"error", "com.example.Refused"}})
            .owns(sensors + "FAN9", "com.example.Sensors",
                  {{"xyz.openbmc_project.Sensor.Value",
                    {{"Value", property("d", 1)}}}});
    sim::Platform platform(machine.scenario());
    const auto document = documentOf("show fans --timeout 0.5", 1);
    const auto& errors = document["errors"];
    EXPECT_EQ(errors, Json::parse(R"([
        {"table": "fans", "message": "timed out after 0.5 s",
         "path": "/xyz/openbmc_project/sensors/fan_tach/FAN1",
         "service": "xyz.openbmc_project.FanSensor"},
        {"table": "fans", "message": "com.example.Refused",
         "path": "/xyz/openbmc_project/sensors/fan_tach/FAN2",
         "service": "xyz.openbmc_project.FanSensor"},
        {"table": "fans", "message": "has no Unit",
         "path": "/xyz/openbmc_project/sensors/fan_tach/FAN9",
         "service": "com.example.Sensors"}])"));
    EXPECT_EQ(document["tables"]["fans"].size(), 6u);
    EXPECT_EQ(document["tables"]["fans"][0]["name"], "FAN3");
}

TEST(Show, NamesThePropertyThatIsMissing)
{
    struct
    {
        std::string table;
        const char* interface;
        Json properties;
        const char* missing;
    } const cases[]{
        {"memory",
         "xyz.openbmc_project.Inventory.Item.Dimm",
         {{"MemoryType", text("a.DDR5")}, {"FormFactor", text("a.DIMM")}},
         "ECC"},
        {"bmc-network",
         "xyz.openbmc_project.Network.EthernetInterface",
         {{"InterfaceName", text("eth7")}},
         "NICEnabled"},
    };
    for (const auto& [table, interface, properties, missing] : cases)
    {
        const std::string path = "/xyz/openbmc_project/network/odd";
        const auto machine =
            Machine().owns(path, "com.example.Odd", {{interface, properties}});
        sim::Platform platform(machine.scenario());
        EXPECT_EQ(morvath("show " + table).errors,
                  "morvath: " + table + ": " + path +
                      ": com.example.Odd: has no " + missing + '\n');
    }
}

TEST(Show, WaitsOnceForASilentMapper)
{
    const auto machine = Machine::server().fault(
        {{"service", "xyz.openbmc_project.ObjectMapper"}}, {{"silent", true}});
    sim::Platform platform(machine.scenario());
    platform.clearCalls();
    EXPECT_EQ(morvath("show --all --timeout 0.5").status, 1);
    EXPECT_EQ(platform.calls().size(), 1u);
}

} // namespace morvath::tests::show
