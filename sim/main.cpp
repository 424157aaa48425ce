#include "sim/commands.hpp"

#include <CLI/CLI.hpp>

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
                    "The machine to simulate (default: a built-in server)")
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
    std::printf("%zu objects, %zu services, %zu faults%s%s\n",
                scenario.objects().size(), scenario.services().size(),
                scenario.faults().size(),
                scenario.description().empty() ? "" : ": ",
                scenario.description().c_str());
    return EXIT_SUCCESS;
}

/** Runs one of the two commands that serve, with its log. */
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

/** Describes the command line; returns the chosen command's function. */
int parseAndExecute(int argc, char** argv)
{
    Options options;
    CLI::App app("Simulates the services of a managed server on a bus",
                 "morvath-sim");
    app.require_subcommand(1);

    CLI::App* runIt = app.add_subcommand(
        "run", "Run a command on a private bus with a simulated platform");
    addScenarioOption(*runIt, options);
    addLogOption(*runIt, options);
    runIt->add_option("command", options.command, "The command, after --")
        ->type_name("COMMAND...")
        ->required();

    CLI::App* serveIt =
        app.add_subcommand("serve", "Serve on a bus that is already there");
    addScenarioOption(*serveIt, options);
    addLogOption(*serveIt, options);
    serveIt
        ->add_option("--address", options.address,
                     "The bus (default: the one of the environment)")
        ->type_name("ADDRESS");

    CLI::App* checkIt =
        app.add_subcommand("scenario", "Check a scenario and sum it up");
    addScenarioOption(*checkIt, options);

    try
    {
        app.parse(argc, argv);
    }
    catch (const CLI::ParseError& error)
    {
        return app.exit(error) == 0 ? EXIT_SUCCESS : statusUsage;
    }
    if (runIt->parsed())
    {
        return run(options);
    }
    return serveIt->parsed() ? serveHere(options) : checkScenario(options);
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
