// SPDX-License-Identifier: Apache-2.0
#include "sim/background.hpp"
#include "support/machine.hpp"
#include "support/program.hpp"

#include <gtest/gtest.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <optional>

namespace morvath::tests::watch
{

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
    const Background watched("$MORVATH sensors --json --watch 80000");
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
    const auto command = "dbus-daemon --session --nofork --print-address=1 "
                         "--address=unix:path=" +
                         file;
    std::optional<Background> bus(command);
    EXPECT_NE(bus->line(), "");
    const Background watched("env DBUS_SESSION_BUS_ADDRESS=unix:path=" + file +
                             " $MORVATH sensors --json --watch 0.01 2>&1");
    EXPECT_TRUE(watched.says(roundBegins));
    bus.reset();
    EXPECT_TRUE(watched.says("cannot connect to the bus at unix:path=" + file));
    unlink(file.c_str());
    bus.emplace(command);
    EXPECT_TRUE(watched.says(roundBegins));
    bus.reset();
    unlink(file.c_str());
    rmdir(folder);
}

/** In KiB. */
long greatestMemory(pid_t process)
{
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    std::string word;
    long size = 0;
    while (status >> word && word != "VmHWM:")
    {}
    EXPECT_TRUE(status >> size);
    return size;
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
        const Background json("$MORVATH sensors --json --watch 80000");
        EXPECT_LT(json.line().size(),
                  600u * sensors + isLong * longName.size());
        memory.at(isLong) = greatestMemory(json.id());
    }
    // Much less than the name once for each sensor.
    EXPECT_LT(memory[1] - memory[0], 60'000);
}

} // namespace morvath::tests::watch
