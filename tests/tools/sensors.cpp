// SPDX-License-Identifier: Apache-2.0
#include "sim/sd_bus.hpp"
#include "support/background.hpp"
#include "support/machine.hpp"
#include "support/program.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <optional>

namespace morvath::tests::sensors
{

const std::string root = "/xyz/openbmc_project/sensors/";

/** A sensor with its reading and, if it has limits, its alarms. */
void addSensor(Machine& machine, const std::string& path, const Json& value,
               const Json& limits = Json::object())
{
    machine.owns(root + path, "com.example.Sensors",
                 {{"xyz.openbmc_project.Sensor.Value",
                   {{"Value", property("d", value)},
                    {"Unit", text("xyz.Unit.RPMS")},
                    {"MaxValue", property("d", "inf")}}},
                  {"com.example.Limits", limits}});
}

Json limits(bool isWarning, bool isCritical)
{
    return {{"CriticalAlarmHigh", property("b", false)},
            {"CriticalAlarmLow", property("b", isCritical)},
            {"CriticalHigh", property("d", "nan")},
            {"CriticalLow", property("d", 500)},
            {"WarningAlarmHigh", property("b", isWarning)},
            {"WarningAlarmLow", property("b", false)},
            {"WarningHigh", property("d", 9000)}};
}

Machine sensorsInAllStates()
{
    Machine machine;
    addSensor(machine, "fan_pwm/e", 12.345);
    addSensor(machine, "fan_tach/a10", 800, limits(false, false));
    addSensor(machine, "fan_tach/a2", 800, limits(false, false));
    addSensor(machine, "utilization/f", 7);
    addSensor(machine, "fan_tach/b", 9001, limits(true, false));
    addSensor(machine, "fan_tach/c", 400, limits(true, true));
    addSensor(machine, "fan_tach/d", "nan", limits(false, true));
    return machine;
}

TEST(Sensors, AreOneTableWithAlarmsFirst)
{
    auto machine = sensorsInAllStates();
    sim::Platform platform(machine.scenario());
    const auto all = morvath("sensors");
    EXPECT_EQ(all.status, 0);
    EXPECT_EQ(all.errors, "");
    EXPECT_EQ(
        all.output,
        "CLASS        NAME    READING  STATE      CRIT LOW  WARN LOW  WARN HIGH"
        "  CRIT HIGH\n"
        "fans         c       400 RPM  critical        500         -       9000"
        "          -\n"
        "fans         d             -  critical        500         -       9000"
        "          -\n"
        "fans         b      9001 RPM  warning         500         -       9000"
        "          -\n"
        "fans         a2      800 RPM  ok              500         -       9000"
        "          -\n"
        "fans         a10     800 RPM  ok              500         -       9000"
        "          -\n"
        "pwms         e     12.35 RPM  no limits         -         -          -"
        "          -\n"
        "utilization  f         7 RPM  no limits         -         -          -"
        "          -\n");
    EXPECT_EQ(
        morvath("sensors --csv 'a*' f --no-legend").output,
        "fans,a10,800.0,RPMS,ok,500.0,,9000.0,,,,false,false,false,false\n"
        "fans,a2,800.0,RPMS,ok,500.0,,9000.0,,,,false,false,false,false\n"
        "utilization,f,7.0,RPMS,no limits,,,,,,,false,false,false,false\n");
}

TEST(Sensors, AreColouredWhereThatIsWanted)
{
    auto machine = sensorsInAllStates();
    sim::Platform platform(machine.scenario());
    struct
    {
        const char* terminal;
        const char* arguments;
        bool isColoured;
    } const cases[]{
        {"xterm", "", true},
        {"xterm", "--color never", false},
        {"xterm", "--plain", false},
        {"dumb", "", false},
        {"dumb", "--color always", true},
        {"xterm NO_COLOR=1", "", false},
        {"xterm NO_COLOR=1", "--color=always", true},
    };
    for (const auto& [terminal, arguments, isColoured] : cases)
    {
        const auto shown =
            run("env -u NO_COLOR TERM=" + std::string(terminal) +
                    R"( sh -c 'script -qec "$*" /dev/null' - MORVATH)",
                std::string("sensors ") + arguments)
                .output;
        EXPECT_EQ(shown.find("\x1b[33m") != shown.npos, isColoured)
            << terminal << arguments;
        EXPECT_NE(shown.find("9001"), shown.npos) << shown;
    }
    EXPECT_EQ(morvath("sensors").output.find('\x1b'), std::string::npos);
}

TEST(Sensors, StandInForNoneThatCouldNotBeRead)
{
    Machine machine;
    addSensor(machine, "current/a", 1);
    addSensor(machine, "power/b", 2);
    machine.fault({{"path", root + "current/a"}}, {{"vanished", true}});
    sim::Platform platform(machine.scenario());
    const auto shown = morvath("sensors --no-legend");
    EXPECT_EQ(shown.status, 1);
    EXPECT_EQ(shown.output, "powers  b  2 RPM  no limits  -  -  -  -\n");
    EXPECT_TRUE(shown.errors.starts_with(
        "morvath: currents: /xyz/openbmc_project/sensors/current/a: "
        "com.example.Sensors: org.freedesktop.DBus.Error.UnknownObject"))
        << shown.errors;
}

constexpr auto roundBegins = R"({"formatVersion")";

TEST(Watch, ReadsAgainUntilASignal)
{
    sim::Platform platform(Machine::smallServer().scenario());
    for (const auto signal : {SIGINT, SIGTERM})
    {
        Background watched("$MORVATH sensors --json --watch 0.01");
        EXPECT_TRUE(watched.says(roundBegins));
        EXPECT_TRUE(watched.says(roundBegins));
        watched.send(signal);
        for (std::string line; !(line = watched.line()).empty();)
        {
            EXPECT_FALSE(Json::parse(line)["tables"]["fans"].empty());
        }
        EXPECT_EQ(watched.end(), 0);
    }
}

TEST(Watch, ReadsWhatTheBusSendsBetweenRounds)
{
    sim::Platform platform(Machine::smallServer().scenario());
    const Background watched("$MORVATH sensors --json --watch 80000");
    ASSERT_TRUE(watched.says(roundBegins));
    const auto name = platform.calls().back().caller;
    const auto bus = sim::openBus("");
    const std::string ballast(1000, 'b');
    for (int i = 0; i < 1000; ++i)
    {
        sd_bus_message* signal = nullptr;
        sd_bus_message_new_signal(bus.get(), &signal, "/a", "com.example.A",
                                  "B");
        const sim::Message owned(signal);
        sd_bus_message_append(signal, "s", ballast.c_str());
        sd_bus_send_to(bus.get(), signal, name.c_str(), nullptr);
    }
    // It answers only when it has read all before.
    EXPECT_GE(sd_bus_call_method(bus.get(), name.c_str(), "/",
                                 "org.freedesktop.DBus.Peer", "Ping", nullptr,
                                 nullptr, ""),
              0);
}

TEST(Watch, UsesABusThatCameBack)
{
    const auto address =
        "unix:abstract=morvath-test-" + std::to_string(getpid());
    const auto command =
        "dbus-daemon --session --nofork --print-address=1 --address=" + address;
    std::optional<Background> bus(command);
    EXPECT_NE(bus->line(), "");
    const Background watched("env DBUS_SESSION_BUS_ADDRESS=" + address +
                             " $MORVATH sensors --json --watch 0.01 2>&1");
    EXPECT_TRUE(watched.says(roundBegins));
    bus.reset();
    EXPECT_TRUE(watched.says("cannot connect to the bus at " + address));
    bus.emplace(command);
    EXPECT_TRUE(watched.says(roundBegins));
}

TEST(Sensors, CostNoMoreThanTheirTexts)
{
    constexpr int sensors = 200;
    const std::string longName(1'000'000, 'n');
    std::array<long, 2> memory{};
    for (const bool isLong : {false, true})
    {
        Machine machine;
        for (int i = 0; i < sensors; ++i)
        {
            machine.owns("/xyz/openbmc_project/sensors/current/s" +
                             std::to_string(i),
                         "com.example.Sensors",
                         {{"xyz.openbmc_project.Sensor.Value",
                           {{"Name", text(i == 0 && isLong ? longName : "a")},
                            {"Value", property("d", 1)},
                            {"Unit", text("xyz.Unit.Amperes")}}}});
        }
        sim::Platform platform(machine.scenario());
        EXPECT_LT(morvath("sensors").output.size(), 160u * sensors);
        const Background json("$MORVATH sensors --json --watch 80000");
        EXPECT_LT(json.line().size(),
                  600u * sensors + isLong * longName.size());
        std::ifstream file("/proc/" + std::to_string(json.id()) + "/status");
        std::string status;
        std::getline(file, status, '\0');
        memory.at(isLong) = std::stol(status.substr(status.find("VmHWM:") + 6));
    }
    // In KiB; much less than the name once for each sensor.
    EXPECT_LT(memory[1] - memory[0], 60'000);
}

} // namespace morvath::tests::sensors
