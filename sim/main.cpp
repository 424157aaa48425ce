// SPDX-License-Identifier: Apache-2.0
#include "cli/program.hpp"
#include "cli/terminal_text.hpp"
#include "sim/record/record.hpp"
#include "sim/runner.hpp"
#include "sim/scenario.hpp"

#include <nlohmann/json.hpp>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace morvath::sim;
namespace cli = morvath::cli;

constexpr auto brokerName = "dbus-broker";
constexpr auto busVariable = "MORVATH_SIM_BUS";

struct Options
{
    std::string scenario = "default";
    std::string log;
    std::string address;
    std::vector<std::string> command;
    bool raidOnly = false;
    RunOptions run;
};

using File = std::unique_ptr<std::FILE, Releaser<std::fclose>>;

/** No file without a name. */
File openLog(const std::string& name)
{
    File file(name.empty() ? nullptr : std::fopen(name.c_str(), "we"));
    if (!file && !name.empty())
    {
        throw std::runtime_error(name + ": " + std::strerror(errno));
    }
    return file;
}

/** In UTC, to the microsecond. */
std::string stampOf(std::chrono::system_clock::time_point time)
{
    constexpr int64_t second = 1'000'000;
    const auto passed = std::chrono::duration_cast<std::chrono::microseconds>(
                            time.time_since_epoch())
                            .count();
    const std::time_t seconds = passed / second;
    std::array<char, 64> text{};
    std::strftime(text.data(), text.size(), "%FT%T.", std::gmtime(&seconds));
    return text.data() + std::to_string(second + passed % second).substr(1) +
           'Z';
}

std::string lineOf(const Call& call)
{
    Json line{{"time", stampOf(call.time)},   {"caller", call.caller},
              {"service", call.service},      {"path", call.path},
              {"interface", call.interface},  {"member", call.member},
              {"arguments", *call.arguments}, {"outcome", call.outcome}};
    if (!call.fault.empty())
    {
        line["fault"] = call.fault;
    }
    return line.dump() + '\n';
}

cli::Parameter scenarioOption(Options& options)
{
    return cli::text("--scenario", cli::fileValue, options.scenario,
                     "The machine: a file, \"default\" or \"busy\"");
}

int checkScenario(const Options& options)
{
    const auto scenario = Scenario::load(options.scenario);
    if (options.raidOnly)
    {
        std::puts(cli::visibleJson(scenario.raid->dump(2)).c_str());
        return EXIT_SUCCESS;
    }
    std::printf("%zu objects, %zu services, %zu faults%s%s\n",
                scenario.objects.size(), scenario.services().size(),
                scenario.faults.size(),
                scenario.description.empty() ? "" : ": ",
                cli::visible(scenario.description).c_str());
    return EXIT_SUCCESS;
}

/**
 * Runs the command, or serves without one. A lost log fails the run but does
 * not hide how the command itself failed.
 */
int serveOrRun(const Options& options)
{
    const auto scenario = Scenario::load(options.scenario);
    const auto log = openLog(options.log);
    auto run = options.run;
    if (log)
    {
        // Flushed, so that a log can be followed and survives a kill.
        run.log = [&](const Call& call) {
            std::fputs(cli::visibleJson(lineOf(call)).c_str(), log.get());
            std::fflush(log.get());
        };
    }
    const int status = options.command.empty()
                           ? serve(scenario, run, options.address)
                           : runCommand(scenario, run, options.command);
    if (!log || std::ferror(log.get()) == 0)
    {
        return status;
    }
    cli::complain(programName, "the log could not be written");
    return status == EXIT_SUCCESS ? EXIT_FAILURE : status;
}

/** A command that serves, with its own parameters behind the common ones. */
cli::Command servingCommand(Options& options, std::string name,
                            std::string meaning,
                            const std::vector<cli::Parameter>& own)
{
    std::vector parameters{
        scenarioOption(options),
        cli::text("--log", cli::fileValue, options.log,
                  "Write every method call and what became of it"),
        cli::flag("--strict", options.run.strict,
                  "Fail when no call has met one of the faults")};
    parameters.insert(parameters.end(), own.begin(), own.end());
    return {
        .name = std::move(name),
        .meaning = std::move(meaning),
        .parameters = std::move(parameters),
        .run = [&options] { return serveOrRun(options); },
    };
}

cli::Command runOf(Options& options)
{
    const auto choose = [&](const std::string& name) {
        options.run.usesBroker = name == brokerName;
    };
    if (const auto* chosen = std::getenv(busVariable))
    {
        choose(chosen);
    }
    return servingCommand(
        options, "run", "Run a command with a simulated platform",
        {{.names = "--bus",
          .meaning = "The program that is the bus (default: dbus-daemon)",
          .take = choose,
          .value = "PROGRAM",
          .words = {{"dbus-daemon", "the reference implementation"},
                    {brokerName, "what controllers run"}}},
         {.names = cli::commandValue,
          .meaning = "The command, after --",
          .take =
              [&](const std::string& word) { options.command.push_back(word); },
          .isRequired = true,
          .isRepeated = true}});
}

cli::Command serveOf(Options& options)
{
    return servingCommand(
        options, "serve", "Serve on a bus that is already there",
        {cli::text("--address", "ADDRESS", options.address,
                   "The bus (default: the one of the environment)")});
}

cli::Command checkOf(Options& options)
{
    return {
        .name = "scenario",
        .meaning = "Check a scenario and sum it up",
        .parameters = {scenarioOption(options),
                       cli::flag("--raid", options.raidOnly,
                                 "Print its RAID section, for "
                                 "MORVATH_SIM_RAID")},
        .run = [&options] { return checkScenario(options); },
        .notes = "The documentation, scenario.md, tells what it can say.",
    };
}

cli::About about()
{
    return {
        .version = MORVATH_VERSION,
        .exitStatuses = {{"0", "success"},
                         {"1", "failure, or a recording with gaps"},
                         {"2", "misuse, or a mistake in a scenario"},
                         {"126, 127",
                          "the command of \"run\" cannot be run, or not found"},
                         {"other", "the status of the command of \"run\""}},
        .environment =
            {{"DBUS_SYSTEM_BUS_ADDRESS",
              "The bus to serve on or to record; \"run\" sets it for "
              "its command"},
             {"MORVATH_SIM_RAID",
              "The file of the RAID section; \"run\" sets it"},
             {busVariable, "What --bus says otherwise"}},
        .examples = {{"morvath-sim run -- morvath show memory",
                      "The command on a simulated server"},
                     {"morvath-sim run --log calls -- morvath get --all",
                      "The same, with a log of all calls"},
                     {"morvath-sim record >my.json",
                      "Record the platform of this machine"},
                     {"morvath-sim scenario --scenario my.json",
                      "Check a scenario"}},
    };
}

int parseAndExecute(int argc, char** argv)
{
    Options options;
    return cli::run(
        {
            .name = programName,
            .meaning = "Simulates the services of a managed server on a bus.",
            .commands = {runOf(options), serveOf(options), checkOf(options),
                         recordCommand()},
        },
        about(), argc, argv);
}

/** A full disk fails what has succeeded otherwise. */
int allWritten(int status)
{
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
    {
        return status;
    }
    cli::complain(programName, "standard output could not be written");
    return status == EXIT_SUCCESS ? EXIT_FAILURE : status;
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        return allWritten(parseAndExecute(argc, argv));
    }
    catch (const ScenarioError& error)
    {
        cli::complain(programName, error.what());
        return cli::misused;
    }
    catch (const std::exception& error)
    {
        cli::complain(programName, error.what());
        return EXIT_FAILURE;
    }
}
