// SPDX-License-Identifier: Apache-2.0
#include "support/machine.hpp"
#include "support/program.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>

namespace morvath::tests
{
namespace
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

sim::Scenario sensorsInAllStates()
{
    Machine machine;
    addSensor(machine, "fan_pwm/e", 12.345);
    addSensor(machine, "fan_tach/a", 800, limits(false, false));
    addSensor(machine, "fan_tach/b", 9001, limits(true, false));
    addSensor(machine, "fan_tach/c", 400, limits(true, true));
    addSensor(machine, "fan_tach/d", "nan", limits(false, true));
    return machine.scenario();
}

TEST(Sensors, AreOneTableOfAllClasses)
{
    sim::Platform platform(sensorsInAllStates());
    const auto all = run("MORVATH", "sensors");
    EXPECT_EQ(all.status, 0);
    EXPECT_EQ(all.errors, "");
    EXPECT_EQ(all.output,
              "CLASS  NAME  READING  UNIT  STATE       CRIT LOW  WARN LOW  "
              "WARN HIGH  CRIT HIGH\n"
              "fans   a     800.00   RPMS  ok          500.00    n/a       "
              "9000.00    nan\n"
              "fans   b     9001.00  RPMS  warning     500.00    n/a       "
              "9000.00    nan\n"
              "fans   c     400.00   RPMS  critical    500.00    n/a       "
              "9000.00    nan\n"
              "fans   d     nan      RPMS  no reading  500.00    n/a       "
              "9000.00    nan\n"
              "pwms   e     12.35    RPMS  no limits   -         -         "
              "-          -\n");
}

TEST(Sensors, AreColouredOnATerminalOnly)
{
    sim::Platform platform(sensorsInAllStates());
    const auto onTerminal = [](const std::string& variable) {
        return run(variable +
                       R"( sh -c 'script -qec "$*" /dev/null' - MORVATH)",
                   "sensors")
            .output;
    };
    const auto shown = onTerminal("env -u NO_COLOR");
    EXPECT_NE(shown.find("\x1b[33mfans   b "), std::string::npos) << shown;
    EXPECT_NE(shown.find("\x1b[1;31mfans   c "), std::string::npos) << shown;
    EXPECT_NE(shown.find("\nfans   a "), std::string::npos) << shown;
    EXPECT_EQ(onTerminal("env NO_COLOR=1").find('\x1b'), std::string::npos);
}

TEST(Sensors, AreReadAgainUntilASignal)
{
    sim::Platform platform(sensorsInAllStates());
    for (const auto signal : {SIGINT, SIGTERM})
    {
        std::array<int, 2> ends;
        ASSERT_EQ(pipe(ends.data()), 0);
        const auto process = fork();
        if (process == 0)
        {
            dup2(ends[1], STDOUT_FILENO);
            execl("/bin/sh", "sh", "-c",
                  "exec $MORVATH sensors --json --watch 0.01", nullptr);
            _exit(127);
        }
        close(ends[1]);
        FILE* output = fdopen(ends[0], "r");
        std::array<char, 10'000> line{};
        int rounds = 0;
        while (std::fgets(line.data(), line.size(), output))
        {
            const std::string round = line.data();
            EXPECT_TRUE(round.ends_with("\n"));
            EXPECT_EQ(Json::parse(round)["tables"]["pwms"][0]["value"], 12.35);
            if (++rounds == 2)
            {
                kill(process, signal);
            }
        }
        std::fclose(output);
        int status = -1;
        waitpid(process, &status, 0);
        EXPECT_GE(rounds, 2);
        EXPECT_TRUE(WIFEXITED(status)) << status;
        EXPECT_EQ(WEXITSTATUS(status), 0);
    }
}

TEST(Sensors, StandInForNoneThatCouldNotBeRead)
{
    Machine machine;
    addSensor(machine, "current/a", 1);
    addSensor(machine, "power/b", 2);
    machine.fault({{"path", root + "current/a"}}, {{"vanished", true}});
    sim::Platform platform(machine.scenario());
    const auto shown = run("MORVATH", "sensors --no-legend");
    EXPECT_EQ(shown.status, 1);
    EXPECT_EQ(shown.output, "powers  b  2.00  RPMS  no limits  -  -  -  -\n");
    EXPECT_TRUE(shown.errors.starts_with("morvath: currents: sd_bus_call: "))
        << shown.errors;
}

} // namespace
} // namespace morvath::tests
