// SPDX-License-Identifier: Apache-2.0
#include "metrics.hpp"
#include "cli/terminal_text.hpp"
#include "command.hpp"
#include "exporter/tables.hpp"
#include "screen.hpp"
#include "table.hpp"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <memory>
#include <stdexcept>
#include <utility>

namespace morvath::tools
{
namespace
{

using Clock = std::chrono::steady_clock;

/** Of the time that is left, for each answer: the rest is for the others. */
constexpr double shareOfAnswer = 0.25;

/** In bytes before they are escaped. */
constexpr std::size_t longestLabel = 128;

/** Stands for bytes that are not UTF-8. */
constexpr std::string_view replacement = "\xef\xbf\xbd";

std::string_view escaped(const cli::Character& character)
{
    if (character.isBroken)
    {
        return replacement;
    }
    switch (character.code)
    {
        case '\\': return "\\\\";
        case '"': return "\\\"";
        case '\n': return "\\n";
        default: return character.bytes;
    }
}

std::string sampleText(double value)
{
    if (std::isinf(value))
    {
        return value > 0 ? "+Inf" : "-Inf";
    }
    // Not all digits: 42.35 percent are 0.4235.
    constexpr int digits = 15;
    // Most are flags and whole limits, which need no search for digits.
    constexpr double wholeLimit = 1e15;
    if (std::abs(value) < wholeLimit && value == std::trunc(value))
    {
        return std::to_string(static_cast<int64_t>(value));
    }
    char text[32];
    return {text, std::to_chars(text, text + sizeof(text), value,
                                std::chars_format::general, digits)
                      .ptr};
}

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

/** Adds a table and how that went; whether all of it was read. */
bool addTable(const char* name, const MetricOptions& options,
              Clock::time_point start, Exposition& exposition)
{
    const auto begin = Clock::now();
    bool isRead = true;
    const auto complainOf = [&](const std::string& failure) {
        complain(std::string(name) + ": " + failure);
        isRead = false;
    };
    const auto prepare = [&] {
        answerLimit() = waitFor(options, start);
        useBus();
    };
    try
    {
        prepare();
        const auto failures = addMetrics(name, exposition, prepare);
        // One for all: this goes to a journal, with every scrape.
        if (!failures.empty())
        {
            complainOf(textOf(failures.front()));
        }
    }
    catch (const std::exception& error)
    {
        complainOf(error.what());
    }
    const auto labels = label("table", name);
    exposition
        .metric("morvath_table_duration_seconds", "How long the table took.",
                true)
        .add(labels, since(begin).count());
    exposition
        .metric("morvath_table_success", "Whether all of the table was read.",
                true)
        .add(labels, isRead);
    return isRead;
}

int printMetrics(MetricOptions& options)
{
    const auto start = Clock::now();
    options.timeout = answerLimit();
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

void Metric::add(std::string_view labels, double value)
{
    samples += name;
    if (!labels.empty())
    {
        samples.append("{").append(labels).append("}");
    }
    samples.append(" ").append(sampleText(value)).append("\n");
}

Metric& Exposition::metric(const std::string& name, std::string_view help,
                           bool isShared)
{
    const auto found = std::ranges::find(metrics, name, &Metric::name);
    return found != metrics.end() ? *found
                                  : metrics.emplace_back(Metric{
                                        name, std::string(help), isShared});
}

std::string Exposition::take(bool withShared)
{
    std::string text;
    for (auto& [name, help, isShared, samples] : metrics)
    {
        if (!samples.empty() && (withShared || !isShared))
        {
            text += "# HELP " + name + ' ' + help + "\n# TYPE " + name +
                    " gauge\n" + std::exchange(samples, {});
        }
    }
    return text;
}

std::string label(std::string_view name, std::string_view value)
{
    std::string text(name);
    text += "=\"";
    std::size_t size = 0;
    while (!value.empty())
    {
        const auto character = cli::firstOf(value);
        size += character.bytes.size();
        if (size > longestLabel)
        {
            break;
        }
        text += escaped(character);
        value.remove_prefix(character.bytes.size());
    }
    return text += '"';
}

cli::Command metricsCommand()
{
    const auto options = std::make_shared<MetricOptions>();
    return {
        .name = "metrics",
        .meaning = "Print all for Prometheus, in its text format",
        .parameters = {timeoutOption(),
                       cli::seconds("--deadline", options->deadline,
                                    "Longest time for all, in seconds"),
                       cli::flag("--by-table", options->byTable,
                                 "Write all of a table at once")},
        .run = [options] { return printMetrics(*options); },
        .notes = "Tables that cannot be read, or not all of them, or are not "
                 "reached before the\ndeadline, have morvath_table_success 0.",
    };
}

} // namespace morvath::tools
