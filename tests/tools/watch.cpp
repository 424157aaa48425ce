// SPDX-License-Identifier: Apache-2.0
#include "sim/process.hpp"
#include "support/machine.hpp"
#include "tools/running.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <optional>

namespace morvath::tests
{

Running::Running(const std::string& arguments, const std::string& environment)
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

Running::~Running()
{
    alarm(0);
    std::fclose(output);
    if (process > 0)
    {
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }
}

std::string Running::line()
{
    char* text = nullptr;
    std::size_t size = 0;
    const auto length = getline(&text, &size, output);
    const std::string line(text, length < 0 ? 0 : length);
    std::free(text);
    return line;
}

bool Running::says(std::string_view text)
{
    std::string one;
    do
    {
        one = line();
    } while (!one.empty() && one.find(text) == one.npos);
    return !one.empty();
}

rusage Running::end()
{
    int status = -1;
    rusage usage{};
    wait4(process, &status, 0, &usage);
    process = 0;
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    return usage;
}

namespace
{

/** A bus without anything, there as long as this object. */
class LoneBus
{
  public:
    explicit LoneBus(const std::string& address) :
        process({"dbus-daemon", "--session", "--nofork", "--print-address=1",
                 "--address=" + address},
                {.environment = {},
                 .output = started.writeEnd.get(),
                 .deathSignal = SIGKILL})
    {
        char byte = 0;
        EXPECT_EQ(read(started.readEnd.get(), &byte, 1), 1);
    }

  private:
    sim::Pipe started;
    sim::Process process;
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
        kill(watched.id(), signal);
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
    const auto name = nameOf(bus, watched.id());
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

} // namespace
} // namespace morvath::tests
