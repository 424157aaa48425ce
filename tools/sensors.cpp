// SPDX-License-Identifier: Apache-2.0
#include "sensors.hpp"

#include "cli/terminal_text.hpp"
#include "command.hpp"

#include <fnmatch.h>
#include <time.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

namespace morvath::tools
{
namespace
{

struct SensorOptions
{
    Look look;
    /** Names with the wildcards of a shell; none for all sensors. */
    std::vector<std::string> names;
    std::string className;
    std::string order;
    bool alarmsOnly = false;
    bool check = false;
    /** The pause between rounds; absent for a single one. */
    std::optional<Seconds> watch;
};

/** What one round read. */
struct Round
{
    std::vector<Table> tables;
    std::vector<TableReading> readings;
    std::string host;
};

std::string headerOf(const Round& round, const SensorOptions& options)
{
    const auto now = time(nullptr);
    tm local{};
    localtime_r(&now, &local);
    std::array<char, 16> clock;
    strftime(clock.data(), clock.size(), "%T", &local);
    const auto pause =
        options.watch ? "  (" + textOf(*options.watch) + ')' : "";
    return clock.data() + ("  " + round.host) + "  " +
           summaryOf(round.readings) + pause;
}

void append(Texts& lines, const Texts& others)
{
    lines.insert(lines.end(), others.begin(), others.end());
}

/** The lines in place of those before, as many as the window has. */
std::string repainted(Texts lines, std::size_t height)
{
    if (height > 1 && lines.size() > height)
    {
        const auto more = lines.size() - height + 1;
        lines.resize(height - 1);
        lines.push_back("(" + std::to_string(more) +
                        " more; enlarge the window)");
    }
    return "\x1b[H" + joined(lines, "\x1b[K\n") + "\x1b[K\x1b[J";
}

/** What matters first; whatever else there is below a line. */
std::string screenOf(const Round& round, const SensorOptions& options)
{
    const auto& look = options.look;
    const std::string rule(std::min<std::size_t>(look.width, 100), '-');
    Texts first{fitted(headerOf(round, options), look)};
    append(first, alarmLines(round.readings, look));
    append(first, failureLines(round.readings, look));
    auto lines = first;
    lines.push_back(rule);
    append(lines, classLines(round.readings, look));
    if (options.watch)
    {
        return repainted(std::move(lines), look.height);
    }
    const auto isTall = look.height > 0 && lines.size() >= look.height;
    if (isTall && first.size() > 1)
    {
        // The beginning has left the window by then.
        lines.push_back(rule);
        append(lines, first);
    }
    return textOf(lines);
}

/** All sensors in one table, alarms first, for other programs and logs. */
struct Flat
{
    std::vector<Column> columns{{"class", "CLASS", nullptr, 3}};
    std::vector<Cells> rows;
};

Flat flatOf(const Round& round)
{
    Flat flat;
    const auto& columns = round.tables.front().columns;
    flat.columns.insert(flat.columns.end(), columns.begin(), columns.end());
    for (const auto& reading : round.readings)
    {
        for (const auto& cells : reading.rows)
        {
            auto& row = flat.rows.emplace_back(Cells{reading.table->name});
            row.insert(row.end(), cells.begin(), cells.end());
        }
    }
    return flat;
}

State stateOfFlat(const Cells& row)
{
    return stateOf({row.begin() + 1, row.end()});
}

std::string tableOf(const Round& round, const SensorOptions& options)
{
    auto flat = flatOf(round);
    if (options.order.empty())
    {
        const auto urgency = [](const Cells& row) {
            return std::min(stateOfFlat(row), State::ok);
        };
        std::ranges::stable_sort(flat.rows, {}, urgency);
    }
    const auto text = textOf(
        textLines(flat.columns, flat.rows, options.look,
                  [](const Cells& row) { return colourOf(stateOfFlat(row)); }));
    return options.watch ? headerOf(round, options) + '\n' + text + '\n' : text;
}

bool isWanted(const Cells& cells, const SensorOptions& options)
{
    const auto matches = [&cells](const std::string& pattern) {
        const auto* name = std::get_if<std::string>(&cells[nameColumn]);
        return fnmatch(pattern.c_str(), name ? name->c_str() : "", 0) == 0;
    };
    return (options.names.empty() ||
            std::ranges::any_of(options.names, matches)) &&
           (!options.alarmsOnly || stateOf(cells) <= State::warning);
}

void sort(std::vector<Cells>& rows, const std::string& order)
{
    if (order == "reading")
    {
        std::ranges::stable_sort(rows, std::greater(), [](const Cells& cells) {
            return numberOf(cells[readingColumn]).value_or(-1e300);
        });
    }
    else if (order == "state")
    {
        std::ranges::stable_sort(
            rows, {}, [](const Cells& cells) { return stateOf(cells); });
    }
    else if (!order.empty())
    {
        rows = inNaturalOrder(std::move(rows));
    }
}

/** Of the server if it has one, otherwise of its controller. */
std::string serverName()
{
    const auto reading = read(*findFact("system-host-name"));
    const auto* name = std::get_if<std::string>(&reading.value);
    return name ? *name : hostName();
}

Round readAll(const SensorOptions& options)
{
    useBus();
    Round round{allSensorTables(), {}, serverName()};
    const auto& look = options.look;
    bool isKnown = options.className.empty();
    for (const auto& table : round.tables)
    {
        if (!options.className.empty() && table.name != options.className)
        {
            continue;
        }
        isKnown = true;
        auto& reading =
            round.readings.emplace_back(read(table, Absence::emptyTable));
        std::erase_if(reading.rows, [&options](const Cells& cells) {
            return !isWanted(cells, options);
        });
        const auto isForPeople = !look.asJson && !look.asCsv;
        sort(reading.rows,
             options.order.empty() && isForPeople ? "name" : options.order);
    }
    if (!isKnown)
    {
        throw std::runtime_error("the platform has no class \"" +
                                 options.className + "\" of sensors");
    }
    return round;
}

int statusOf(const Round& round, const SensorOptions& options)
{
    bool isComplete = true;
    bool isEmpty = true;
    State worst = State::noLimits;
    for (const auto& reading : round.readings)
    {
        isComplete = isComplete && reading.failures.empty();
        isEmpty = isEmpty && reading.rows.empty();
        for (const auto& cells : reading.rows)
        {
            worst = std::min(worst, stateOf(cells));
        }
    }
    if (isComplete && isEmpty && !options.names.empty() && !options.alarmsOnly)
    {
        complain("no sensor has such a name");
        return incomplete;
    }
    if (options.check && worst <= State::warning)
    {
        return worst == State::critical ? critical : warning;
    }
    return isComplete ? complete : incomplete;
}

int showOnce(const SensorOptions& options)
{
    const auto round = readAll(options);
    const auto& look = options.look;
    const auto isScreen = look.isTerminal && !look.isPlain && !look.isWide &&
                          !look.asJson && !look.asCsv;
    if (!isScreen)
    {
        for (const auto& reading : round.readings)
        {
            complainAbout(reading);
        }
    }
    const auto flat = look.asCsv ? flatOf(round) : Flat();
    printWhole(look.asJson  ? jsonOf(round.readings, options.watch.has_value())
               : look.asCsv ? csvOf(flat.columns, flat.rows, look.withTitles)
               : isScreen   ? screenOf(round, options)
                            : tableOf(round, options));
    return statusOf(round, options);
}

int showSensors(SensorOptions& options)
{
    options.look.measure();
    if (!options.watch)
    {
        return showOnce(options);
    }
    if (options.check)
    {
        throw cli::Misuse("--check excludes --watch");
    }
    watch(*options.watch, [&options] {
        options.look.measure();
        showOnce(options);
    });
    return incomplete;
}

std::vector<cli::Parameter> parametersFor(SensorOptions& options)
{
    const auto take = [&options](const std::string& name) {
        options.names.push_back(name);
    };
    cli::Parameter names{.names = "SENSOR",
                         .meaning = "Only sensors of these names, with * and ?",
                         .take = take,
                         .isRepeated = true};
    auto ofClass = cli::text("--class", "CLASS", options.className,
                             "Only sensors of this class");
    ofClass.takesOthers = true;
    for (const auto& table : sensorTables())
    {
        ofClass.words.push_back({table.name, ""});
    }
    auto order = cli::text("--sort", "ORDER", options.order,
                           "Sort by name, reading or state");
    order.words = {{"name", ""}, {"reading", ""}, {"state", ""}};
    std::vector parameters{
        std::move(names),
        std::move(ofClass),
        cli::flag("--alarms", options.alarmsOnly, "Only sensors in alarm"),
        std::move(order),
        cli::flag("--check", options.check,
                  "Status 3 for a critical sensor, 4 for a warning"),
        cli::seconds("--watch", options.watch,
                     "Repeat with this pause, each JSON in one line")};
    addOptions(parameters, options.look);
    parameters.push_back(timeoutOption());
    return parameters;
}

} // namespace

cli::Command sensorsCommand()
{
    const auto options = std::make_shared<SensorOptions>();
    return {
        .name = "sensors",
        .meaning = "Print all sensors, those in alarm first",
        .parameters = parametersFor(*options),
        .run = [options] { return showSensors(*options); },
        .notes = "States: ok, warning, critical, no reading, and no limits for "
                 "a sensor\nthat has none.",
    };
}

} // namespace morvath::tools
