// SPDX-License-Identifier: Apache-2.0
#include "support/machine.hpp"
#include "support/program.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>

namespace morvath::tests::watch
{

/** The command while it runs; what it says must come within a minute. */
class Running
{
  public:
    explicit Running(const std::string& arguments,
                     const std::string& environment = {})
    {
        std::array<int, 2> ends;
        EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
        process = fork();
        if (process == 0)
        {
            dup2(ends[1], STDOUT_FILENO);
            dup2(ends[1], STDERR_FILENO);
            const auto line = environment + " exec $MORVATH " + arguments;
            execl("/bin/sh", "sh", "-c", line.c_str(), nullptr);
            _exit(127);
        }
        close(ends[1]);
        output = fdopen(ends[0], "r");
        alarm(60);
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    ~Running()
    {
        alarm(0);
        std::fclose(output);
        if (process > 0)
        {
            kill(process, SIGKILL);
            waitpid(process, nullptr, 0);
        }
    }

    /** The next line of either output; empty at the end. */
    std::string line()
    {
        char* text = nullptr;
        std::size_t size = 0;
        const auto length = getline(&text, &size, output);
        const std::string line(text, length < 0 ? 0 : length);
        std::free(text);
        return line;
    }

    /** Whether there comes a line with such a text. */
    bool says(std::string_view text)
    {
        for (std::string one; !(one = line()).empty();)
        {
            if (one.find(text) != one.npos)
            {
                return true;
            }
        }
        return false;
    }

    /** Waits for the end, of which success is expected. */
    rusage end()
    {
        int status = -1;
        rusage usage{};
        wait4(process, &status, 0, &usage);
        process = 0;
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
        return usage;
    }

    pid_t process;

  private:
    FILE* output;
};

/** A bus without anything, there as long as this object. */
class LoneBus
{
  public:
    explicit LoneBus(const std::string& address) :
        output(popen(("exec dbus-daemon --session --nofork --print-address=1 "
                      "--print-pid=1 --address=" +
                      address)
                         .c_str(),
                     "re"))
    {
        EXPECT_EQ(std::fscanf(output, "%*s %d", &process), 1);
    }
    LoneBus(const LoneBus&) = delete;
    LoneBus& operator=(const LoneBus&) = delete;

    ~LoneBus()
    {
        kill(process, SIGKILL);
        pclose(output);
    }

  private:
    FILE* output;
    pid_t process = 0;
};

constexpr auto roundBegins = R"({"formatVersion")";

TEST(Watch, ReadsAgainUntilASignal)
{
    sim::Platform platform(Machine::smallServer().scenario());
    for (const auto signal : {SIGINT, SIGTERM})
    {
        Running watched("sensors --json --watch 0.01");
        EXPECT_TRUE(watched.says(roundBegins));
        EXPECT_TRUE(watched.says(roundBegins));
        kill(watched.process, signal);
        for (std::string line; !(line = watched.line()).empty();)
        {
            EXPECT_FALSE(Json::parse(line)["tables"]["fans"].empty());
        }
        watched.end();
    }
}

/** The name on the bus of a process of ours. */
std::string nameOf(sd_bus* bus, pid_t process)
{
    char** names = nullptr;
    EXPECT_GE(sd_bus_list_names(bus, &names, nullptr), 0);
    std::string found;
    for (char** name = names; *name; ++name)
    {
        sd_bus_creds* owner = nullptr;
        pid_t id = 0;
        if (**name == ':' &&
            sd_bus_get_name_creds(bus, *name, SD_BUS_CREDS_PID, &owner) >= 0 &&
            sd_bus_creds_get_pid(owner, &id) >= 0 && id == process)
        {
            found = *name;
        }
        sd_bus_creds_unref(owner);
        std::free(*name);
    }
    std::free(names);
    return found;
}

TEST(Watch, ReadsWhatTheBusSendsBetweenRounds)
{
    sim::Platform platform(Machine::smallServer().scenario());
    Running watched("sensors --json --watch 80000");
    ASSERT_TRUE(watched.says(roundBegins));
    sd_bus* bus = nullptr;
    ASSERT_GE(sd_bus_open(&bus), 0);
    const auto name = nameOf(bus, watched.process);
    const std::string ballast(1000, 'b');
    for (int i = 0; i < 1000; ++i)
    {
        sd_bus_message* signal = nullptr;
        sd_bus_message_new_signal(bus, &signal, "/a", "com.example.A", "B");
        sd_bus_message_append(signal, "s", ballast.c_str());
        sd_bus_send_to(bus, signal, name.c_str(), nullptr);
        sd_bus_message_unref(signal);
    }
    // It answers only when it has read all before.
    EXPECT_GE(sd_bus_call_method(bus, name.c_str(), "/",
                                 "org.freedesktop.DBus.Peer", "Ping", nullptr,
                                 nullptr, ""),
              0);
    sd_bus_flush_close_unref(bus);
}

TEST(Watch, UsesABusThatCameBack)
{
    char folder[] = "/tmp/morvath-test-XXXXXX";
    ASSERT_TRUE(mkdtemp(folder));
    const auto file = folder + std::string("/bus");
    std::optional<LoneBus> bus("unix:path=" + file);
    Running watched("sensors --json --watch 0.01",
                    "DBUS_SESSION_BUS_ADDRESS=unix:path=" + file);
    EXPECT_TRUE(watched.says(roundBegins));
    bus.reset();
    EXPECT_TRUE(watched.says("cannot connect to the bus at unix:path=" + file));
    unlink(file.c_str());
    bus.emplace("unix:path=" + file);
    EXPECT_TRUE(watched.says(roundBegins));
    bus.reset();
    unlink(file.c_str());
    rmdir(folder);
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
        EXPECT_LT(run("MORVATH", "sensors").output.size(), 160u * sensors);
        Running json("sensors --json");
        std::size_t size = 0;
        for (std::string line; !(line = json.line()).empty();)
        {
            size += line.size();
        }
        EXPECT_LT(size, 600u * sensors + isLong * longName.size());
        memory.at(isLong) = json.end().ru_maxrss;
    }
    // In KiB; much less than the name once for each sensor.
    EXPECT_LT(memory[1] - memory[0], 60'000);
}

} // namespace morvath::tests::watch
