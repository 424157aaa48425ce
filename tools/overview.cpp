// SPDX-License-Identifier: Apache-2.0
#include "cli/terminal_text.hpp"
#include "command.hpp"
#include "sensors.hpp"

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>

namespace morvath::tools
{
namespace
{

struct Options
{
    Look look;
    std::optional<Seconds> timeout;
};

constexpr std::size_t labelWidth = 16;
constexpr std::size_t widestFact = 60;

/** The lines so far, and what could not be read. */
class Overview
{
  public:
    explicit Overview(const Look& look) : look(look) {}

    void add(const std::string& label, const std::string& text)
    {
        if (!text.empty())
        {
            const auto line = padded(label, labelWidth) + text;
            lines.push_back(look.width > 0 ? cli::visible(line, look.width)
                                           : cli::visible(line));
        }
    }

    /** A fact as people read it; empty without one. */
    std::string fact(std::string_view name)
    {
        const auto reading = read(*findFact(name));
        if (reading.failure)
        {
            failures[*reading.failure].push_back(std::string(name));
        }
        return reading.value == Value()
                   ? ""
                   : cli::visible(textOf(reading.value), widestFact);
    }

    TableReading table(const Table& table)
    {
        auto reading = read(table, Absence::emptyTable);
        for (const auto& [object, message] : reading.failures)
        {
            const auto& [path, service] = object;
            failures[service.empty() ? message : service + ": " + message]
                .push_back(path.empty() ? table.name : path);
        }
        return reading;
    }

    TableReading table(std::string_view name)
    {
        return table(*std::ranges::find(tables(), name, &Table::name));
    }

    const Look& look;
    std::vector<std::string> lines;
    /** What failed, by the reason. */
    std::map<std::string, std::vector<std::string>> failures;
};

std::size_t columnOf(const TableReading& reading, std::string_view key)
{
    const auto& columns = reading.table->columns;
    return static_cast<std::size_t>(
        std::ranges::find(columns, key, &Column::key) - columns.begin());
}

std::string listOf(const std::vector<std::string>& names)
{
    std::string text;
    for (const auto& name : names)
    {
        text.append(text.empty() ? "" : ", ").append(name);
    }
    return text;
}

/** "12 of 16; empty: dimm12, dimm13". */
std::string presenceOf(const TableReading& reading)
{
    const auto present = columnOf(reading, "present");
    std::vector<std::string> empty;
    for (const auto& row : inNaturalOrder(reading.rows))
    {
        if (row[present] == Value(false))
        {
            empty.push_back(textOf(row.front()));
        }
    }
    const auto all = reading.rows.size();
    if (all == 0)
    {
        return {};
    }
    auto text =
        std::to_string(all - empty.size()) + " of " + std::to_string(all);
    return empty.empty() ? text : text + "; empty: " + listOf(empty);
}

std::string memoryOf(const TableReading& reading)
{
    const auto text = presenceOf(reading);
    const auto size = columnOf(reading, "sizeKiB");
    int64_t sum = 0;
    for (const auto& row : reading.rows)
    {
        const auto* number = std::get_if<int64_t>(&row[size]);
        sum += number ? *number : 0;
    }
    const std::vector columns{reading.table->columns[size]};
    return text.empty() ? text : cellText(columns, {sum}, 0) + ", " + text;
}

/** Drives of arrays, with those that are not as they should be. */
std::string drivesOf(const TableReading& reading)
{
    const auto state = columnOf(reading, "state");
    std::vector<std::string> others;
    for (const auto& row : reading.rows)
    {
        const auto word = textOf(row[state]);
        if (!word.starts_with("Online") && !word.ends_with("Spare"))
        {
            others.push_back(textOf(row.front()) + ' ' + word);
        }
    }
    const auto all = reading.rows.size();
    return all == 0 ? ""
                    : std::to_string(all) + " drives" +
                          (others.empty() ? "" : "; " + listOf(others));
}

std::string addressesOf(const TableReading& reading)
{
    const auto address = columnOf(reading, "ipAddress");
    std::vector<std::string> names;
    for (const auto& row : reading.rows)
    {
        names.push_back(textOf(row.front()) + ' ' + textOf(row[address]));
    }
    return listOf(names);
}

/** "BMC 3.2.1, BIOS 2.07", of what there is. */
std::string firmwareIn(Overview& overview)
{
    constexpr std::pair<const char*, const char*> parts[]{
        {"BMC ", "bmc-version"},
        {"BIOS ", "bios-version"},
        {"logic ", "cpld-version"}};
    std::vector<std::string> versions;
    for (const auto& [label, name] : parts)
    {
        const auto version = overview.fact(name);
        if (!version.empty())
        {
            versions.push_back(label + version);
        }
    }
    return listOf(versions);
}

void addMachine(Overview& overview)
{
    const auto maker = overview.fact("system-manufacturer");
    const auto model = overview.fact("system-model");
    overview.add("System", maker.empty() ? model : maker + ' ' + model);
    overview.add("Serial number", overview.fact("system-serial-number"));
    overview.add("Host name", overview.fact("system-host-name"));
    overview.add("Firmware", firmwareIn(overview));
    overview.add("Power", overview.fact("power-state"));
    overview.add("Processors", presenceOf(overview.table("processors")));
    overview.add("Memory", memoryOf(overview.table("memory")));
    overview.add("PCIe slots", presenceOf(overview.table("pcie-slots")));
    overview.add("Disks", presenceOf(overview.table("disks")));
    overview.add("RAID", drivesOf(overview.table("raid-drives")));
    const auto supplies = overview.table("power-supplies").rows.size();
    overview.add("Power supplies",
                 supplies > 0 ? std::to_string(supplies) : "");
    overview.add("Network", addressesOf(overview.table("bmc-network")));
}

void addSensors(Overview& overview)
{
    const auto tables = allSensorTables();
    std::vector<TableReading> readings;
    for (const auto& table : tables)
    {
        readings.push_back(overview.table(table));
    }
    overview.add("Sensors", summaryOf(readings));
    for (const auto& line : alarmLines(readings, overview.look))
    {
        overview.lines.push_back("  " + line);
    }
}

int show(Options& options)
{
    options.look.measure();
    useBus(options.timeout);
    Overview overview(options.look);
    addMachine(overview);
    addSensors(overview);
    for (const auto& [reason, what] : overview.failures)
    {
        overview.add("Not read", reason);
        overview.add("", listOf(what));
    }
    std::string text;
    for (const auto& line : overview.lines)
    {
        text.append(line) += '\n';
    }
    print(text);
    return overview.failures.empty() ? complete : incomplete;
}

} // namespace

cli::Command overviewCommand()
{
    const auto options = std::make_shared<Options>();
    return {
        .name = "overview",
        .meaning = "Print what matters in some 15 lines",
        .parameters = {colourOption(options->look), plainOption(options->look),
                       timeoutOption(options->timeout)},
        .run = [options] { return show(*options); },
    };
}

} // namespace morvath::tools
