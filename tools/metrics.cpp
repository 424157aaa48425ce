// SPDX-License-Identifier: Apache-2.0
#include "command.hpp"
#include "exporter/tables.hpp"
#include "exposition.hpp"
#include "screen.hpp"
#include "table.hpp"

#include <algorithm>
#include <chrono>
#include <memory>
#include <stdexcept>

namespace morvath::tools
{
namespace
{

using Clock = std::chrono::steady_clock;

/** Of the time that is left, for each answer: the rest is for the others. */
constexpr double shareOfAnswer = 0.25;

struct MetricOptions
{
    std::optional<Seconds> timeout;
    std::optional<Seconds> deadline;
    bool byTable = false;
};

Seconds since(Clock::time_point start) { return Clock::now() - start; }

/** How long to wait for an answer. Raises when there is no time left. */
std::optional<Seconds> waitFor(const MetricOptions& options,
                               Clock::time_point start)
{
    if (!options.deadline)
    {
        return options.timeout;
    }
    const auto left = *options.deadline - since(start);
    if (left <= Seconds(0))
    {
        throw std::runtime_error("not reached before the deadline");
    }
    return std::min(options.timeout.value_or(left), left * shareOfAnswer);
}

/** Adds a table and how that went; whether it was read. */
bool addTable(const char* name, const MetricOptions& options,
              Clock::time_point start, Exposition& exposition)
{
    const auto begin = Clock::now();
    bool isRead = true;
    try
    {
        useBus(waitFor(options, start));
        beginReading(name);
        addMetrics(name, exposition);
    }
    catch (const Absent&)
    {
        // Nothing to add.
    }
    catch (const std::exception& error)
    {
        complain(std::string(name) + ": " + error.what());
        isRead = false;
    }
    const auto labels = label("table", name);
    exposition
        .shared("morvath_table_duration_seconds", "How long the table took.")
        .add(labels, since(begin).count());
    exposition.shared("morvath_table_success", "Whether the table was read.")
        .add(labels, isRead);
    return isRead;
}

int printMetrics(const MetricOptions& options)
{
    const auto start = Clock::now();
    Exposition exposition;
    int status = complete;
    for (const auto* name : exporter::tableNames)
    {
        status =
            addTable(name, options, start, exposition) ? status : incomplete;
        print(exposition.take(options.byTable));
    }
    if (!options.byTable)
    {
        exposition
            .metric("morvath_scrape_duration_seconds",
                    "How long the reading took.")
            .add("", since(start).count());
        exposition.metric("morvath_build_info", "The version of the command.")
            .add(label("version", MORVATH_VERSION), 1);
        print(exposition.take(true));
    }
    return status;
}

} // namespace

cli::Command metricsCommand()
{
    const auto options = std::make_shared<MetricOptions>();
    return {
        .name = "metrics",
        .meaning = "Print all for Prometheus, in its text format",
        .parameters = {timeoutOption(options->timeout),
                       cli::seconds("--deadline", options->deadline,
                                    "Longest time for all, in seconds"),
                       cli::flag("--by-table", options->byTable,
                                 "Write all of a table at once")},
        .run = [options] { return printMetrics(*options); },
        .notes = "Tables that cannot be read, or are not reached before the "
                 "deadline, have\nmorvath_table_success 0.",
    };
}

} // namespace morvath::tools
