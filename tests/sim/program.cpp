// SPDX-License-Identifier: Apache-2.0
#include "support/program.hpp"
#include "sim/background.hpp"
#include "sim/client.hpp"
#include "sim/process.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <tuple>

namespace morvath::tests::program
{

constexpr auto oneObject = R"({"format": 1, "mapper": false, "objects": [
    {"path": "/a", "services": [{"name": "x.S", "interfaces": {}}]}]})";

Outcome morvathSim(const std::string& arguments)
{
    return run("MORVATH_SIM", arguments);
}

TEST(Program, StatusTellsWhatHappened)
{
    const sim::MemoryFile bad("{\"format\": 3}");
    const auto badFormat = "morvath-sim: " + bad.path() +
                           ": /format: must be 1, the only format there is\n";
    const std::tuple<std::string, int, std::string> cases[]{
        {"run -- sh -c 'exit 7'", 7, ""},
        {"run -- sh -c 'trap \"exit 9\" TERM; kill -TERM $PPID; "
         "while :; do :; done'",
         9, ""},
        {"run -- sh -c 'kill -9 $$'", 137, ""},
        {"run -- sh -c 'echo \"$@\"' - --log -- x", 0, "--log -- x\n"},
        {"run -- /no/such/program", 127,
         "morvath-sim: cannot run /no/such/program: No such file or "
         "directory\n"},
        {"run -- /", 126, "morvath-sim: cannot run /: Permission denied\n"},
        {"run --log /no/such/file -- true", 1,
         "morvath-sim: /no/such/file: No such file or directory\n"},
        {"run --log /dev/full -- sh -c 'dbus-send "
         "--bus=$DBUS_SYSTEM_BUS_ADDRESS --print-reply=literal "
         "--dest=xyz.openbmc_project.Network / "
         "org.freedesktop.DBus.Peer.Ping'",
         1, "morvath-sim: the log could not be written\n"},
        {"scenario", 0,
         "127 objects, 18 services, 0 faults: A two-socket rack server: 16 "
         "memory slots, 8 card slots, 63 sensors\n"},
        {"scenario --scenario " + bad.path(), 2, badFormat},
        {"run --scenario " + bad.path() + " -- echo started", 2, badFormat},
        {"scenario --scenario /no/such/file", 2,
         "morvath-sim: /no/such/file: cannot be read\n"},
    };
    for (const auto& [arguments, status, output] : cases)
    {
        const auto outcome = morvathSim(arguments);
        EXPECT_EQ(outcome.status, status) << arguments;
        EXPECT_EQ(outcome.output + outcome.errors, output) << arguments;
    }
    for (const char* usage : {"", "run", "bogus", "scenario --bogus"})
    {
        EXPECT_EQ(morvathSim(usage).status, 2) << usage;
    }
}

TEST(Program, CommandFindsThePlatformAndIsLogged)
{
    const sim::MemoryFile log("");
    const std::string environment =
        "test $DBUS_STARTER_BUS_TYPE = system && for address in "
        "$DBUS_STARTER_ADDRESS $DBUS_SYSTEM_BUS_ADDRESS "
        "$DBUS_SESSION_BUS_ADDRESS; do dbus-send --bus=$address "
        "--print-reply=literal --dest=xyz.openbmc_project.Time.Manager "
        "/xyz/openbmc_project/time/bmc org.freedesktop.DBus.Properties.Get "
        "string:xyz.openbmc_project.Time.EpochTime string:Elapsed; done";
    const Outcome outcome = morvathSim("run --log " + log.path() +
                                       " -- sh -c '" + environment + "'");
    EXPECT_EQ(outcome.status, 0);
    const std::string answer = "   variant       uint64 1795250400000000\n";
    EXPECT_EQ(outcome.output, answer + answer + answer);
    std::ifstream stream(log.path());
    std::set<std::string> callers;
    for (std::string text; std::getline(stream, text);)
    {
        auto line = Json::parse(text);
        EXPECT_EQ(line["time"].get<std::string>().size(),
                  sizeof("2026-11-21T22:26:59.149706Z") - 1);
        callers.insert(line["caller"]);
        line.erase("time");
        line.erase("caller");
        EXPECT_EQ(line.dump(),
                  R"({"service":"xyz.openbmc_project.Time.Manager",)"
                  R"("path":"/xyz/openbmc_project/time/bmc",)"
                  R"("interface":"org.freedesktop.DBus.Properties",)"
                  R"("member":"Get",)"
                  R"("arguments":["xyz.openbmc_project.Time.EpochTime",)"
                  R"("Elapsed"],"outcome":"reply"})");
    }
    EXPECT_EQ(callers.size(), 3U);
}

TEST(Program, CommandFindsTheRaidSectionWhileItRuns)
{
    const std::string section = R"({"controllers":[{"raid_id":5}]})";
    const sim::MemoryFile scenario(R"({"format": 1, "raid": )" + section + "}");
    // A program between may close what it inherits.
    const Outcome outcome = morvathSim(
        "run --scenario " + scenario.path() +
        " -- sh -c 'exec 3>&- 4>&- 5>&-; cat $MORVATH_SIM_RAID; echo; "
        "cat $MORVATH_SIM_RAID; echo; echo $MORVATH_SIM_RAID'");
    EXPECT_EQ(outcome.status, 0);
    const std::string twice = section + "\n" + section + "\n";
    ASSERT_TRUE(outcome.output.starts_with(twice)) << outcome.output;
    const std::string file = outcome.output.substr(twice.size());
    ASSERT_TRUE(file.starts_with("/")) << file;
    EXPECT_FALSE(std::filesystem::exists(file.substr(0, file.size() - 1)));

    EXPECT_EQ(
        morvathSim("scenario --raid --scenario " + scenario.path()).output,
        Json::parse(section).dump(2) + "\n");
}

TEST(Program, NothingOutlivesAKilledOne)
{
    Background killed("$MORVATH_SIM run -- sh -c 'echo "
                      "$DBUS_SYSTEM_BUS_ADDRESS; exec sleep 60'");
    const sim::MemoryFile scenario(oneObject);
    Background other("$MORVATH_SIM serve --scenario " + scenario.path() +
                     " --address " + killed.line() + " 2>&1");
    EXPECT_EQ(other.line(), "serving 1 objects of 1 services");
    killed.send(SIGKILL);
    EXPECT_EQ(other.line(), "morvath-sim: the bus went away");
    // The command had the other end of the pipe.
    EXPECT_EQ(killed.line(), "");
}

TEST(Program, ServesUntilItIsTold)
{
    const sim::MemoryFile scenario(oneObject);
    Client client;
    Background program("$MORVATH_SIM serve --scenario " + scenario.path());
    EXPECT_EQ(program.line(), "serving 1 objects of 1 services");
    EXPECT_EQ(client.getAll("x.S", "/a", ""), Json::object());
    program.send(SIGTERM);
    EXPECT_EQ(program.line(), "");
    EXPECT_EQ(client.getAll("x.S", "/a", ""),
              "org.freedesktop.DBus.Error.ServiceUnknown");
}

} // namespace morvath::tests::program
