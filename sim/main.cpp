// SPDX-License-Identifier: Apache-2.0
#include "cli/program.hpp"
#include "sim/commands.hpp"
#include "sim/record/command.hpp"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using namespace morvath::sim;

constexpr int statusUsage = 2;

namespace
{

struct Options
{
    std::string scenario;
    std::string log;
    std::string address;
    std::vector<std::string> command;
    bool raidOnly = false;
    RecordOptions record;
};

/** Writes calls as lines of JSON; discards them without a file. */
class LogFile
{
  public:
    explicit LogFile(const std::string& name)
    {
        if (name.empty())
        {
            return;
        }
        file_.reset(std::fopen(name.c_str(), "we"));
        if (!file_)
        {
            throw std::runtime_error(name + ": " + std::strerror(errno));
        }
    }

    void write(const Call& call)
    {
        if (file_)
        {
            // Flushed, so that a log can be followed and survives a kill.
            const std::string line = toJson(call).dump() + "\n";
            std::fputs(line.c_str(), file_.get());
            std::fflush(file_.get());
        }
    }

    bool isComplete() const
    {
        return !file_ || std::ferror(file_.get()) == 0;
    }

  private:
    struct Close
    {
        void operator()(std::FILE* file) const
        {
            std::fclose(file);
        }
    };

    std::unique_ptr<std::FILE, Close> file_;
};

Scenario chosenScenario(const Options& options)
{
    return options.scenario.empty() ? Scenario::standard()
                                    : Scenario::load(options.scenario);
}

void addScenarioOption(CLI::App& command, Options& options)
{
    command
        .add_option("--scenario", options.scenario,
                    "The machine (default: a built-in server)")
        ->type_name("FILE");
}

void addLogOption(CLI::App& command, Options& options)
{
    command
        .add_option("--log", options.log,
                    "Write every method call as a line of JSON")
        ->type_name("FILE");
}

int checkScenario(const Options& options)
{
    const Scenario scenario = chosenScenario(options);
    if (options.raidOnly)
    {
        std::puts(scenario.raid().dump(2).c_str());
        return EXIT_SUCCESS;
    }
    std::printf("%zu objects, %zu services, %zu faults%s%s\n",
                scenario.objects().size(), scenario.services().size(),
                scenario.faults().size(),
                scenario.description().empty() ? "" : ": ",
                scenario.description().c_str());
    return EXIT_SUCCESS;
}

/**
 * Runs one of the two commands that serve, with its log. A lost log fails the
 * run but does not hide how the command itself failed.
 */
template <typename Serving>
int withLog(const Options& options, const Serving& serving)
{
    const Scenario scenario = chosenScenario(options);
    LogFile log(options.log);
    blockEndSignals();
    const int status =
        serving(scenario, [&](const Call& call) { log.write(call); });
    if (log.isComplete())
    {
        return status;
    }
    std::fputs("morvath-sim: the log could not be written\n", stderr);
    return status == EXIT_SUCCESS ? EXIT_FAILURE : status;
}

int run(const Options& options)
{
    return withLog(options, [&](const Scenario& scenario, CallSink sink) {
        return runCommand(scenario, sink, options.command);
    });
}

int serveHere(const Options& options)
{
    return withLog(options, [&](const Scenario& scenario, CallSink sink) {
        return serve(scenario, sink, options.address);
    });
}

using Action = int (*)(const Options&);

void addRun(CLI::App& app, Options& options, Action& chosen)
{
    CLI::App* command =
        app.add_subcommand("run", "Run a command with a simulated platform");
    addScenarioOption(*command, options);
    addLogOption(*command, options);
    command->add_option("COMMAND", options.command, "The command, after --")
        ->required();
    command->callback([&] { chosen = run; });
}

void addServe(CLI::App& app, Options& options, Action& chosen)
{
    CLI::App* command =
        app.add_subcommand("serve", "Serve on a bus that is already there");
    addScenarioOption(*command, options);
    addLogOption(*command, options);
    command
        ->add_option("--address", options.address,
                     "The bus (default: the one of the environment)")
        ->type_name("ADDRESS");
    command->callback([&] { chosen = serveHere; });
}

void addCheck(CLI::App& app, Options& options, Action& chosen)
{
    CLI::App* command =
        app.add_subcommand("scenario", "Check a scenario and sum it up");
    addScenarioOption(*command, options);
    command->add_flag("--raid", options.raidOnly,
                      "Print its RAID section, for MORVATH_SIM_RAID");
    command->footer("The documentation, scenario.md, tells what it can say.");
    command->callback([&] { chosen = checkScenario; });
}

void addRecord(CLI::App& app, Options& options, Action& chosen)
{
    addRecordCommand(app, options.record)->callback([&] {
        chosen = [](const Options& given) { return record(given.record); };
    });
}

morvath::cli::About about()
{
    return {
        .name = "morvath-sim",
        .version = MORVATH_VERSION,
        .summary = "Simulates the services of a managed server on a bus.",
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
              "The file of the RAID section; \"run\" sets it"}},
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
    Action chosen = nullptr;
    morvath::cli::Program program(about());
    CLI::App& app = program.app();
    addRun(app, options, chosen);
    addServe(app, options, chosen);
    addCheck(app, options, chosen);
    addRecord(app, options, chosen);
    return program.run(argc, argv, [&] { return chosen(options); });
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        return parseAndExecute(argc, argv);
    }
    catch (const ScenarioError& error)
    {
        std::fprintf(stderr, "morvath-sim: %s\n", error.what());
        return statusUsage;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "morvath-sim: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
