// SPDX-License-Identifier: Apache-2.0
#include "cli/terminal_text.hpp"
#include "support/machine.hpp"
#include "support/program.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <regex>

namespace morvath::tests::command_line
{

/** The help of a described command, and of all commands in it. */
void expectHelp(const char* program, const Json& command,
                const std::string& path)
{
    const auto help = run(program, path + "--help");
    EXPECT_EQ(help.status, 0) << path << help.errors;
    EXPECT_FALSE(std::regex_search(help.output, std::regex(".{81}")))
        << help.output;
    for (const auto& inner : command["commands"])
    {
        expectHelp(program, inner,
                   path + inner["name"].get<std::string>() + ' ');
    }
}

TEST(Usage, HelpFitsATerminal)
{
    const std::pair<const char*, const char*> programs[]{
        {"MORVATH", "morvath"}, {"MORVATH_SIM", "morvath-sim"}};
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
        std::string error;
    } const cases[]{
        {"shwo", "no command 'shwo'; did you mean 'show'?"},
        {"show", "TABLE or --all is required"},
        {"show memroy", "no table 'memroy'; did you mean 'memory'?"},
        {"show memory --timout=3",
         "no option '--timout'; did you mean '--timeout'?"},
        {"show --all memory", "TABLE excludes --all"},
        {"sensors --watch 0",
         "--watch: 0 is not between 0.001 and 86400 seconds"},
        {"facts memory", "unexpected 'memory'"},
        {"set board-name x", "board-name cannot be set"},
        {"set time", "VALUE is required"},
        {"set time 1969-12-31T23:59:59Z",
         "time: \"1969-12-31T23:59:59Z\" is not now, seconds since 1970, or a "
         "time such as 2026-11-21T14:30:00Z"},
        {"set power-control 5",
         "power-control: \"5\" is not off, on, reboot, graceful-warm-reboot, "
         "force-warm-reboot or 0 to 4"},
        {"set time-sync 2", "time-sync: \"2\" is not manual, ntp or 0 to 1"},
        {"set power-restore-policy A",
         "power-restore-policy: \"A\" is not AlwaysOn, AlwaysOff or "
         "LastState"},
        {"set ntp-servers ntp.example",
         "ntp-servers: \"ntp.example\" is not one to three IPv4 addresses"},
        {"set system-asset-tag $(printf %0200d 1)",
         "system-asset-tag: \"" + std::string(59, '0') +
             "…\" is not a text of at most 199 bytes"},
        {"show memory fans --csv", "--csv takes one table"},
        {"sensors --json --csv", "--csv excludes --json"},
        {"sensors --color red", "no when 'red'"},
        {"set lldp nic-0 port1 on",
         "ADAPTER: \"nic-0\" is not a segment of an object path"},
    };
    sim::Platform platform(sim::Scenario::standard());
    for (const auto& [arguments, error] : cases)
    {
        const auto misuse = morvath(arguments);
        EXPECT_EQ(misuse.status, 2) << arguments;
        EXPECT_EQ(misuse.output, "") << arguments;
        EXPECT_EQ(misuse.errors, "morvath: " + error + '\n');
    }
    EXPECT_TRUE(platform.calls().empty());
    EXPECT_EQ(run("MORVATH_SIM", "run --lgo x -- true").errors,
              "morvath-sim: no option '--lgo'; did you mean '--log'?\n");
}

TEST(Usage, StatusesTellWhatScriptsAskFor)
{
    const std::string sensors = "/xyz/openbmc_project/sensors/";
    const auto server = sim::Scenario::standard();
    const auto unread = withFault(server, {{"path", sensors + "voltage/P5V"}},
                                  {{"error", "com.example.No"}});
    struct
    {
        sim::Scenario machine;
        const char* arguments;
        int status;
    } const cases[]{
        {server, "sensors", 0},
        {server, "sensors --check", 3},
        {server, "sensors --check --class temperatures", 4},
        {server, "sensors --check 'CPU*'", 0},
        {server, "sensors --check --alarms 'CPU*'", 0},
        {server, "sensors NONE", 1},
        {server, "sensors --class none", 1},
        {server, "overview", 0},
        {unread, "sensors --check", 3},
        {unread, "sensors --check --class voltages", 1},
        {unread, "sensors", 1},
        {unread, "overview", 1},
        {Machine().scenario(), "sensors --check", 0},
        {Machine().withoutMapper().scenario(), "sensors", 1},
    };
    for (const auto& [machine, arguments, status] : cases)
    {
        sim::Platform platform(machine);
        EXPECT_EQ(morvath(arguments).status, status) << arguments;
    }
}

TEST(Usage, NeedsNoBusButForThePlatform)
{
    struct
    {
        const char* bus;
        const char* arguments;
        int status;
        const char* error;
    } const cases[]{
        {"unix:path=/none", "--version", 0, ""},
        {"unix:path=/none", "set --help", 0, ""},
        {"unix:path=/none", "facts", 0, ""},
        {"unix:path=/none", "--complete sh", 0, ""},
        {"unix:path=/none", "sensors", 1,
         ": No such file or directory; start the bus"},
        {"unixexec:path=sleep,argv1=60", "sensors --timeout 0.2", 1,
         ": no answer within 0.2 s; restart the bus"},
    };
    for (const auto& [bus, arguments, status, error] : cases)
    {
        const auto done =
            run(std::string("env DBUS_SESSION_BUS_ADDRESS=") + bus + " MORVATH",
                arguments);
        EXPECT_EQ(done.status, status) << arguments;
        EXPECT_EQ(done.output.empty(), status != 0) << arguments;
        EXPECT_EQ(done.errors.starts_with(
                      std::string("morvath: cannot connect to the bus at ") +
                      bus + error),
                  status != 0)
            << done.errors;
    }
}

TEST(TerminalText, ShowsWhatCouldSteerATerminal)
{
    struct
    {
        std::string_view text;
        const char* shown;
        std::size_t width;
    } const cases[]{
        {"", "", 0},
        {"Inlet_Temp", "Inlet_Temp", 10},
        {"Größe", "Größe", 5},
        {"日本", "日本", 4},
        {"😀", "😀", 2},
        {"e\u0301", "e\u0301", 1},
        {"a\nb\r\t", "a\\x0ab\\x0d\\x09", 14},
        {"\x1b]0;title\x07", "\\x1b]0;title\\x07", 16},
        {"\x7f", "\\x7f", 4},
        {{"\0", 1}, "\\x00", 4},
        {"\u009b31m", "\\u009b31m", 9},
        {"\x9b", "\\x9b", 4},
        {"\u202eabc\u2066", "\\u202eabc\\u2066", 15},
        {"\u2028\u061c", "\\u2028\\u061c", 12},
        {"\ufeff\u200b", "\\ufeff\\u200b", 12},
        {"\U000e0041", "\\U000e0041", 10},
        {"\xc0\x9b", "\\xc0\\x9b", 8},
        {"\xe0\x80\x9b", "\\xe0\\x80\\x9b", 12},
        {"\xed\xa0\x80", "\\xed\\xa0\\x80", 12},
        {"\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80", 16},
        {"ab\xe2\x82", "ab\\xe2\\x82", 10},
    };
    for (const auto& [text, shown, width] : cases)
    {
        EXPECT_EQ(cli::visible(text), shown);
        EXPECT_EQ(cli::widthOf(cli::visible(text)), width) << shown;
    }
}

TEST(TerminalText, CutsBetweenCharacters)
{
    const std::tuple<const char*, std::size_t, const char*> cases[]{
        {"abcdef", 6, "abcdef"}, {"abcdef", 5, "abcd…"}, {"日本語", 5, "日本…"},
        {"日本語", 4, "日…"},    {"a\x1b", 4, "a…"},     {"e\u0301e", 1, "…"},
    };
    for (const auto& [text, width, shown] : cases)
    {
        EXPECT_EQ(cli::visible(text, width), shown);
    }
}

TEST(TerminalText, EscapesJsonWithoutChangingIt)
{
    EXPECT_EQ(cli::visibleJson("{\n\"a\": \"é\u009b\u202e\x7f\U000e0041\"}"),
              "{\n\"a\": \"é\\u009b\\u202e\\u007f\\udb40\\udc41\"}");
}

} // namespace morvath::tests::command_line
