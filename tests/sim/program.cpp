// SPDX-License-Identifier: Apache-2.0
#include "support/program.hpp"
#include "sim/process.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>
#include <string>
#include <tuple>

namespace morvath::tests::program
{

/** A file whose name commands find in a variable. */
struct NamedFile : sim::MemoryFile
{
    NamedFile(const char* variable, const std::string& contents) :
        MemoryFile(contents)
    {
        setenv(variable, path().c_str(), true);
    }
};

const NamedFile bad("BAD", "{\"format\": 3}");
const NamedFile good("GOOD", R"({"format": 1, "mapper": false, "objects": [
    {"path": "/a", "services": [{"name": "x.S", "interfaces": {
      "x.I": {"P": {"type": "i", "value": 1}}}}]}],
    "raid": {"controllers": [{"raid_id": 5}]}, "changes": [
    {"after": 0.01, "raid": {"/controllers/0/raid_id": 6}}]})");
const NamedFile faulty("FAULTY", R"({"format": 1, "extends": ")" + good.path() +
                                     R"(", "faults": [
    {"when": {"property": "P", "call": 3},
     "then": {"error": "x.E", "message": "no"}}]})");

Outcome morvathSim(const std::string& arguments)
{
    return run("MORVATH_SIM", arguments);
}

TEST(Program, StatusTellsWhatHappened)
{
    const auto badFormat = "morvath-sim: " + bad.path() +
                           ": /format: must be 1, the only format there is\n";
    const std::string unused =
        "morvath-sim: /faults/0: no call has met this fault\n";
    const std::tuple<std::string, int, std::string> cases[]{
        {"run -- sh -c 'exit 7'", 7, ""},
        // Without the signal it ends all the same.
        {"run -- sh -c 'sleep 60 & trap \"kill $!; exit 9\" TERM; "
         "kill -TERM $PPID; wait'",
         9, ""},
        {"run -- sh -c 'kill -9 $$'", 137, ""},
        {"run -- sh -c 'echo \"$@\"' - --log -- x", 0, "--log -- x\n"},
        {"run", 2, "morvath-sim: COMMAND is required\n"},
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
        {"run --scenario $FAULTY -- true", 0, unused},
        {"run --scenario $FAULTY --strict -- true", 1, unused},
        // A program between may close what it inherits.
        {"run --scenario $GOOD -- timeout 60 sh -c 'exec 3>&- 4>&- 5>&-; until "
         "grep 6 $MORVATH_SIM_RAID; do sleep 0.01; done; "
         "cat $MORVATH_SIM_RAID'",
         0, R"({"controllers":[{"raid_id":6}]}
{"controllers":[{"raid_id":6}]})"},
        {"scenario --raid --scenario $GOOD", 0,
         "{\n  \"controllers\": [\n    {\n      \"raid_id\": 5\n    }\n  ]\n"
         "}\n"},
        {"scenario", 0,
         "127 objects, 18 services, 0 faults: A two-socket rack server: 16 "
         "memory slots, 8 card slots, 63 sensors\n"},
        {"scenario --scenario busy", 0,
         "127 objects, 18 services, 0 faults: The default server; every minute "
         "a fan stops, a processor gets hot, a drive drops out of its array\n"},
        {"scenario --scenario $BAD", 2, badFormat},
        {"run --scenario $BAD -- echo started", 2, badFormat},
        {"scenario --scenario /no/such/file", 2,
         "morvath-sim: /no/such/file: cannot be read\n"},
    };
    for (const auto& [arguments, status, output] : cases)
    {
        const auto outcome = morvathSim(arguments);
        EXPECT_EQ(outcome.status, status) << arguments;
        EXPECT_EQ(outcome.output + outcome.errors, output) << arguments;
    }
}

TEST(Program, CommandFindsThePlatformAndIsLogged)
{
    const NamedFile log("LOG", "");
    const auto outcome = morvathSim(
        "run --scenario $FAULTY --log $LOG -- sh -c '"
        "echo $DBUS_STARTER_BUS_TYPE; for address in $DBUS_STARTER_ADDRESS "
        "$DBUS_SYSTEM_BUS_ADDRESS $DBUS_SESSION_BUS_ADDRESS; do "
        "dbus-send --bus=$address --print-reply=literal --dest=x.S /a "
        "org.freedesktop.DBus.Properties.Get string:x.I string:P 2>&1; done; "
        "cat $LOG'");
    const std::regex when(
        R"("time":"[-0-9]{10}T[:0-9]{8}\.[0-9]{6}Z","caller":":1\.[0-9]+",)");
    EXPECT_EQ(std::regex_replace(outcome.output, when, ""), R"(system
   variant       int32 1
   variant       int32 1
Error x.E: no
{"service":"x.S","path":"/a","interface":"org.freedesktop.DBus.Properties","member":"Get","arguments":["x.I","P"],"outcome":"reply"}
{"service":"x.S","path":"/a","interface":"org.freedesktop.DBus.Properties","member":"Get","arguments":["x.I","P"],"outcome":"reply"}
{"service":"x.S","path":"/a","interface":"org.freedesktop.DBus.Properties","member":"Get","arguments":["x.I","P"],"outcome":"x.E","fault":"/faults/0"}
)");
}

TEST(Program, ServesUntilItIsToldOrTheBusIsGone)
{
    const auto told = morvathSim(R"(run -- sh <<'END'
        ask() { dbus-send --session --print-reply=literal --dest=x.S /a \
            org.freedesktop.DBus.Peer.Ping 2>/dev/null || echo nobody; }
        sh -c 'echo $$; exec $MORVATH_SIM serve --scenario $GOOD' | {
            read program; head -n 1; ask; kill $program; cat; ask; }
END)");
    EXPECT_EQ(told.output, "serving 1 objects of 1 services\nnobody\n");
    // Nothing of a run that is killed stays, or the last command would wait.
    const auto killed = morvathSim(R"(run -- sh <<'END'
        $MORVATH_SIM run -- sh -c '
            echo $PPID $DBUS_SYSTEM_BUS_ADDRESS; exec sleep 1000' | {
            read killed address
            $MORVATH_SIM serve --scenario $GOOD --address $address 2>&1 | {
                head -n 1; kill -9 $killed; cat; }
            cat; }
END)");
    EXPECT_EQ(killed.output, "serving 1 objects of 1 services\n"
                             "morvath-sim: the bus went away\n");
}

} // namespace morvath::tests::program
