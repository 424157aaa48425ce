#include "client.hpp"
#include "sim/daemon.hpp"
#include "sim/pipe.hpp"
#include "sim/process.hpp"

#include <gtest/gtest.h>

#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

namespace morvath::tests
{

namespace
{

/** The command line that starts the program, on a foreign machine as well. */
std::string program()
{
    const char* wrapper = std::getenv("MESON_EXE_WRAPPER");
    return (wrapper == nullptr ? "" : std::string(wrapper) + " ") +
           MORVATH_SIM_PROGRAM;
}

struct Outcome
{
    int status;
    std::string output;
};

/** Runs the program, standard output and error together. */
Outcome run(const std::string& arguments)
{
    const std::string line = program() + " " + arguments + " 2>&1";
    FILE* stream = popen(line.c_str(), "r");
    std::string output;
    for (int character = fgetc(stream); character != EOF;
         character = fgetc(stream))
    {
        output += static_cast<char>(character);
    }
    return {WEXITSTATUS(pclose(stream)), output};
}

/** The program in the background; its output is read line by line. */
class Background
{
  public:
    explicit Background(const std::string& arguments)
    {
        const sim::ProcessOptions options{.environment = {},
                                          .output = pipe_.writeEnd.get(),
                                          .deathSignal = SIGKILL};
        process_ = std::make_unique<sim::Process>(
            std::vector<std::string>{"sh", "-c",
                                     "exec " + program() + " " + arguments},
            options);
        pipe_.writeEnd.close();
    }

    void send(int signal)
    {
        process_->send(signal);
    }

    /** The next line; empty at the end, when all writers are gone. */
    std::string line()
    {
        std::string text;
        char character = 0;
        while (read(pipe_.readEnd.get(), &character, 1) == 1 &&
               character != '\n')
        {
            text += character;
        }
        return text;
    }

  private:
    sim::Pipe pipe_;
    std::unique_ptr<sim::Process> process_;
};

sim::Bus connectTo(const std::string& address)
{
    sd_bus* bus = nullptr;
    sim::check(sd_bus_new(&bus), "sd_bus_new");
    sim::Bus owned(bus);
    sim::check(sd_bus_set_address(bus, address.c_str()), "sd_bus_set_address");
    sim::check(sd_bus_set_bus_client(bus, true), "sd_bus_set_bus_client");
    sim::check(sd_bus_start(bus), "sd_bus_start");
    return owned;
}

/** Waits until the other side closes the connection. */
bool isClosedInTime(sd_bus* bus)
{
    int result = 1;
    while (result > 0)
    {
        while ((result = sd_bus_process(bus, nullptr)) > 0)
        {}
        result = result < 0 ? result : sd_bus_wait(bus, patience);
    }
    return sd_bus_is_open(bus) <= 0;
}

class TemporaryFile
{
  public:
    explicit TemporaryFile(const std::string& contents)
    {
        const sim::Descriptor file(mkstemp(name_.data()), "mkstemp");
        std::ofstream(name_) << contents;
    }

    ~TemporaryFile()
    {
        std::filesystem::remove(name_);
    }

    const std::string& name() const
    {
        return name_;
    }

  private:
    std::string name_ =
        std::filesystem::temp_directory_path() / "morvath-sim-XXXXXX";
};

} // namespace

TEST(Program, StatusTellsWhatHappened)
{
    struct Case
    {
        std::string arguments;
        int status;
        std::string output;
    };
    const TemporaryFile bad("{\"format\": 3}");
    const std::vector<Case> cases{
        {"run -- sh -c 'exit 7'", 7, ""},
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
        {"scenario --scenario " + bad.name(), 2,
         "morvath-sim: " + bad.name() +
             ": /format: must be 1, the only format there is\n"},
        {"scenario --scenario /no/such/file", 2,
         "morvath-sim: /no/such/file: cannot be read\n"},
    };
    for (const Case& c : cases)
    {
        const Outcome outcome = run(c.arguments);
        EXPECT_EQ(outcome.status, c.status) << c.arguments;
        EXPECT_EQ(outcome.output, c.output) << c.arguments;
    }
    for (const char* usage : {"", "run", "bogus", "scenario --bogus"})
    {
        EXPECT_EQ(run(usage).status, 2) << usage;
    }
}

TEST(Program, CommandFindsThePlatformAndIsLogged)
{
    const TemporaryFile log("");
    const std::string environment =
        "test $DBUS_STARTER_BUS_TYPE = system && for address in "
        "$DBUS_STARTER_ADDRESS $DBUS_SYSTEM_BUS_ADDRESS "
        "$DBUS_SESSION_BUS_ADDRESS; do dbus-send --bus=$address "
        "--print-reply=literal --dest=xyz.openbmc_project.Time.Manager "
        "/xyz/openbmc_project/time/bmc org.freedesktop.DBus.Properties.Get "
        "string:xyz.openbmc_project.Time.EpochTime string:Elapsed; done";
    const Outcome outcome =
        run("run --log " + log.name() + " -- sh -c '" + environment + "'");
    EXPECT_EQ(outcome.status, 0);
    const std::string answer = "   variant       uint64 1795250400000000\n";
    EXPECT_EQ(outcome.output, answer + answer + answer);
    const std::string line =
        R"({"service":"xyz.openbmc_project.Time.Manager",)"
        R"("path":"/xyz/openbmc_project/time/bmc",)"
        R"("interface":"org.freedesktop.DBus.Properties","member":"Get",)"
        R"("arguments":["xyz.openbmc_project.Time.EpochTime","Elapsed"]})"
        "\n";
    std::ifstream stream(log.name());
    const std::string written{std::istreambuf_iterator<char>(stream), {}};
    EXPECT_EQ(written, line + line + line);
}

TEST(Program, CommandFindsTheRaidSectionWhileItRuns)
{
    const std::string section = R"({"controllers":[{"raid_id":5}]})";
    const TemporaryFile scenario(R"({"format": 1, "raid": )" + section + "}");
    // A program between may close what it inherits.
    const Outcome outcome =
        run("run --scenario " + scenario.name() +
            " -- sh -c 'exec 3>&- 4>&- 5>&-; cat $MORVATH_SIM_RAID; echo; "
            "cat $MORVATH_SIM_RAID; echo; echo $MORVATH_SIM_RAID'");
    EXPECT_EQ(outcome.status, 0);
    const std::string twice = section + "\n" + section + "\n";
    ASSERT_TRUE(outcome.output.starts_with(twice)) << outcome.output;
    const std::string file = outcome.output.substr(twice.size());
    ASSERT_TRUE(file.starts_with("/")) << file;
    EXPECT_FALSE(std::filesystem::exists(file.substr(0, file.size() - 1)));

    EXPECT_EQ(run("scenario --raid --scenario " + scenario.name()).output,
              sim::Json::parse(section).dump(2) + "\n");
    const TemporaryFile without(R"({"format": 1})");
    EXPECT_EQ(run("run --scenario " + without.name() +
                  " -- sh -c 'cat $MORVATH_SIM_RAID'")
                  .output,
              R"({"manager_present":false})");
}

TEST(Program, SignalsAreHandedToTheCommand)
{
    const Outcome outcome = run("run -- sh -c 'trap \"exit 9\" TERM; "
                                "kill -TERM $PPID; while :; do :; done'");
    EXPECT_EQ(outcome.status, 9);
}

TEST(Program, NothingOutlivesAKilledOne)
{
    Background program(
        "run -- sh -c 'echo $DBUS_SYSTEM_BUS_ADDRESS; exec sleep 60'");
    const sim::Bus bus = connectTo(program.line());
    program.send(SIGKILL);
    EXPECT_TRUE(isClosedInTime(bus.get()));
    // The command had the other end of the pipe.
    EXPECT_EQ(program.line(), "");
}

TEST(Program, ServesUntilItIsTold)
{
    const TemporaryFile scenario(R"({"format": 1, "objects": [
        {"path": "/a", "services": [{"name": "x.S", "interfaces": {}}]}]})");
    Client client;
    Background program("serve --scenario " + scenario.name());
    EXPECT_EQ(program.line(), "serving 1 objects of 1 services");
    EXPECT_TRUE(client.getAll("x.S", "/a", "").names().empty());
    program.send(SIGTERM);
    EXPECT_EQ(program.line(), "");
    EXPECT_EQ(client.getAll("x.S", "/a", "").error,
              "org.freedesktop.DBus.Error.ServiceUnknown");
}

TEST(Program, ServingEndsWithTheBus)
{
    auto daemon = std::make_unique<sim::Daemon>();
    Background program("serve --address " + daemon->address() + " 2>&1");
    EXPECT_EQ(program.line(), "serving 130 objects of 18 services");
    daemon.reset();
    EXPECT_EQ(program.line(), "morvath-sim: the bus went away");
}

} // namespace morvath::tests
