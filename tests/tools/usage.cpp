// SPDX-License-Identifier: Apache-2.0
#include "support/machine.hpp"
#include "support/program.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace morvath::tests
{
namespace
{

constexpr std::size_t columns = 80;
const std::pair<const char*, const char*> programs[]{
    {"MORVATH", "morvath"}, {"MORVATH_SIM", "morvath-sim"}};

std::size_t longestLine(const std::string& text)
{
    std::size_t longest = 0;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
    {
        longest = std::max(longest, line.size());
    }
    return longest;
}

/** Checks the help of a described command and of all commands in it. */
void expectHelp(const char* program, const Json& command,
                const std::string& path)
{
    const auto help = run(program, path + "--help");
    EXPECT_EQ(help.status, 0) << path;
    EXPECT_EQ(help.errors, "") << path;
    EXPECT_LE(longestLine(help.output), columns) << help.output;
    EXPECT_EQ(run(program, path + "-h").output, help.output);
    for (const auto* part : {"options", "arguments"})
    {
        for (const auto& option : command[part])
        {
            const auto meaning = option["meaning"].get<std::string>();
            EXPECT_NE(help.output.find("  " + meaning + '\n'),
                      std::string::npos)
                << path << meaning;
        }
    }
    for (const auto& inner : command["commands"])
    {
        expectHelp(program, inner,
                   path + inner["name"].get<std::string>() + ' ');
    }
}

TEST(Usage, HelpTellsWhatIsDescribed)
{
    for (const auto& [program, name] : programs)
    {
        const auto described = Json::parse(run(program, "--describe").output);
        EXPECT_EQ(described["name"], name);
        EXPECT_GE(described["commands"].size(), 3u);
        expectHelp(program, described, "");
        EXPECT_NE(run(program, "-h").output.find("\nExit status:\n  0 "),
                  std::string::npos);
        EXPECT_EQ(run(program, "--version").output,
                  std::string(name) + " 0.1.0\n");
    }
}

TEST(Usage, MisuseIsToldWithWhatWasPerhapsMeant)
{
    struct
    {
        const char* arguments;
        const char* error;
    } const cases[]{
        {"", "A subcommand is required"},
        {"shwo", "no command 'shwo'; did you mean 'show'?"},
        {"exhibit", "no command 'exhibit'"},
        {"show", "TABLE or --all is required"},
        {"show memroy", "no table 'memroy'; did you mean 'memory'?"},
        {"show xyz", "no table 'xyz'"},
        {"show memory --jsn", "no option '--jsn'; did you mean '--json'?"},
        {"show memory --timout=3",
         "no option '--timout'; did you mean '--timeout'?"},
        {"show memory --descrbe", "no option '--descrbe'"},
        {"show --all memory", "TABLE excludes --all"},
        {"sensors --watch 0",
         "--watch: Value 0 not in range 0.001000 to 86400.000000"},
        {"sensors memory", "unexpected 'memory'"},
        {"get bmcversion", "no fact 'bmcversion'; did you mean "
                           "'bmc-version'?"},
        {"set power-contrl off", "no command 'power-contrl'; did you mean "
                                 "'power-control'?"},
        {"get", "FACT or --all is required"},
        {"set", "a setting is required"},
        {"set board-name x", "board-name cannot be set"},
        {"set time", "VALUE is required"},
        {"set time 1s",
         "time: \"1s\" is not a whole number of seconds, from -2147483648 to "
         "2147483647"},
        {"set power-control 5",
         "power-control: \"5\" is not off, on, reboot, graceful-warm-reboot, "
         "force-warm-reboot or 0 to 4"},
        {"set time-sync 2", "time-sync: \"2\" is not manual, ntp or 0 to 1"},
        {"set power-restore-policy never",
         "power-restore-policy: \"never\" is not AlwaysOn, AlwaysOff or "
         "LastState"},
        {"set ntp-servers ntp.example",
         "ntp-servers: \"ntp.example\" is not one to three IPv4 addresses "
         "with blanks in between"},
        {"set lldp nic0 port1", "STATE is required"},
        {"set lldp nic0 port1 ON", "STATE: ON not in {on,off}"},
        {"set lldp nic-0 port1 on",
         "ADAPTER: \"nic-0\" is no segment of an object path"},
    };
    sim::Platform platform(sim::Scenario::standard());
    for (const auto& [arguments, error] : cases)
    {
        const auto misuse = run("MORVATH", arguments);
        EXPECT_EQ(misuse.status, 2) << arguments;
        EXPECT_EQ(misuse.output, "") << arguments;
        EXPECT_EQ(misuse.errors, "morvath: " + std::string(error) + '\n');
    }
    EXPECT_TRUE(platform.calls().empty());
    EXPECT_EQ(run("MORVATH_SIM", "run --lgo x -- true").errors,
              "morvath-sim: no option '--lgo'; did you mean '--log'?\n");
}

} // namespace
} // namespace morvath::tests
