#include "catalogue.hpp"
#include "connection.hpp"
#include "show.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <iterator>
#include <string>
#include <vector>

namespace
{

using namespace morvath::tools;

// The exit statuses of the program.
constexpr int complete = 0;
constexpr int incomplete = 1;
constexpr int misused = 2;

constexpr double longestTimeout = 24 * 60 * 60;

std::string knownTables()
{
    constexpr std::size_t nameWidth = 20;
    std::string text = "Tables:\n";
    for (const auto& table : tables())
    {
        auto name = table.name;
        name.resize(std::max(nameWidth, name.size()), ' ');
        text += "  " + name + "  " + table.summary + '\n';
    }
    return text;
}

const Table* tableOf(const std::string& name)
{
    const auto* table = findTable(name);
    if (!table)
    {
        throw CLI::ValidationError("TABLE", "there is no table " + name);
    }
    return table;
}

void addShow(CLI::App& app, ShowOptions& options)
{
    auto* command = app.add_subcommand("show", "Print tables of the platform");
    command->footer(knownTables());
    command
        ->add_option_function<std::vector<std::string>>(
            "TABLE",
            [&options](const std::vector<std::string>& names) {
                std::ranges::transform(
                    names, std::back_inserter(options.tables), tableOf);
            },
            "The tables to print")
        ->required();
    command->add_flag("--json", options.asJson,
                      "Print one JSON document instead of text");
    command->add_flag_callback(
        "--no-legend", [&options] { options.withTitles = false; },
        "Leave out the titles");
    command
        ->add_option("--timeout", options.timeout,
                     "Longest wait for each answer, in seconds (25)")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.001, longestTimeout));
}

/** Text that did not reach its destination is no success. */
bool flushed()
{
    if (std::fflush(stdout) == 0 && !std::ferror(stdout))
    {
        return true;
    }
    std::perror("morvath: standard output");
    return false;
}

int run(int argc, char** argv)
{
    CLI::App app("Shows what a management controller knows of its platform.",
                 "morvath");
    app.set_version_flag("--version", "morvath " MORVATH_VERSION);
    app.require_subcommand(1);
    ShowOptions options;
    addShow(app, options);
    try
    {
        app.parse(argc, argv);
    }
    catch (const CLI::Success& request)
    {
        return app.exit(request);
    }
    catch (const CLI::ParseError& error)
    {
        std::fprintf(stderr, "morvath: %s\n", error.what());
        return misused;
    }
    const bool shown = show(options);
    return flushed() && shown ? complete : incomplete;
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        return run(argc, argv);
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "morvath: %s\n", error.what());
        return incomplete;
    }
}
