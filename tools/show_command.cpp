#include "catalogue.hpp"
#include "command.hpp"
#include "show.hpp"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace morvath::tools
{
namespace
{

constexpr double shortestTimeout = 0.001;
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

} // namespace

void addShow(CLI::App& app, Action& chosen)
{
    auto* command = app.add_subcommand("show", "Print tables of the platform");
    const auto options = std::make_shared<ShowOptions>();
    command->callback(
        [&chosen, options] { chosen = [options] { return show(*options); }; });
    command->footer(knownTables());
    command
        ->add_option_function<std::vector<std::string>>(
            "TABLE",
            [options](const std::vector<std::string>& names) {
                std::ranges::transform(
                    names, std::back_inserter(options->tables), tableOf);
            },
            "The tables to print")
        ->required();
    command->add_flag("--json", options->asJson,
                      "Print one JSON document instead of text");
    command->add_flag_callback(
        "--no-legend", [options] { options->withTitles = false; },
        "Leave out the titles");
    command
        ->add_option("--timeout", options->timeout,
                     "Longest wait for each answer, in seconds (25)")
        ->type_name("SECONDS")
        ->check(CLI::Range(shortestTimeout, longestTimeout));
}

} // namespace morvath::tools
