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
            lines.push_back(fitted(padded(label, labelWidth) + text, look));
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
        return table(tableNamed(name));
    }

    const Look& look;
    Texts lines;
    /** What failed, by the reason. */
    std::map<std::string, Texts> failures;
};

/** "12 of 16; empty: dimm12, dimm13". */
std::string presenceOf(const TableReading& reading)
{
    const auto present = columnOf(*reading.table, "present");
    Texts empty;
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
    return empty.empty() ? text : text + "; empty: " + joined(empty, ", ");
}

std::string memoryOf(const TableReading& reading)
{
    const auto text = presenceOf(reading);
    const auto size = columnOf(*reading.table, "sizeKiB");
    int64_t sum = 0;
    for (const auto& row : reading.rows)
    {
        const auto* number = std::get_if<int64_t>(&row[size]);
        sum += number ? *number : 0;
    }
    const auto column = reading.table->columns.subspan(size, 1);
    return text.empty() ? text : cellText(column, {sum}, 0) + ", " + text;
}

/** Drives of arrays, with those that are not as they should be. */
std::string drivesOf(const TableReading& reading)
{
    const auto state = columnOf(*reading.table, "state");
    Texts others;
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
                          (others.empty() ? "" : "; " + joined(others, ", "));
}

std::string addressesOf(const TableReading& reading)
{
    const auto address = columnOf(*reading.table, "ipAddress");
    Texts names;
    for (const auto& row : reading.rows)
    {
        names.push_back(textOf(row.front()) + ' ' + textOf(row[address]));
    }
    return joined(names, ", ");
}

/** "BMC 3.2.1, BIOS 2.07", of what there is. */
std::string firmwareIn(Overview& overview)
{
    constexpr std::pair<const char*, const char*> parts[]{
        {"BMC ", "bmc-version"},
        {"BIOS ", "bios-version"},
        {"logic ", "cpld-version"}};
    Texts versions;
    for (const auto& [label, name] : parts)
    {
        const auto version = overview.fact(name);
        if (!version.empty())
        {
            versions.push_back(label + version);
        }
    }
    return joined(versions, ", ");
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

int show(Look& look)
{
    look.measure();
    useBus();
    Overview overview(look);
    addMachine(overview);
    addSensors(overview);
    for (const auto& [reason, what] : overview.failures)
    {
        overview.add("Not read", reason);
        overview.add("", joined(what, ", "));
    }
    print(textOf(overview.lines));
    return overview.failures.empty() ? complete : incomplete;
}

} // namespace

cli::Command overviewCommand()
{
    const auto look = std::make_shared<Look>();
    return {
        .name = "overview",
        .meaning = "Print what matters in some 15 lines",
        .parameters = {colourOption(*look), plainOption(*look),
                       timeoutOption()},
        .run = [look] { return show(*look); },
    };
}

} // namespace morvath::tools
