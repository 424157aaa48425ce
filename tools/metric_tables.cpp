// SPDX-License-Identifier: Apache-2.0
#include "exposition.hpp"
#include "facts.hpp"
#include "sensors.hpp"

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>

namespace morvath::tools
{
namespace
{

constexpr double percent = 0.01;

/** From what people count in to what metrics do. */
constexpr std::pair<std::string_view, double> factors[]{
    {"%", percent},  {"KiB", 0x1p10}, {"MiB", 0x1p20},
    {"GiB", 0x1p30}, {"MHz", 1e6},    {"Gbit/s", 1e9 / 8},
};

/** A label, and the fact that it comes from. */
struct FactLabel
{
    std::string_view name;
    std::string_view fact;
};

constexpr FactLabel systemLabels[]{
    {"manufacturer", "system-manufacturer"},
    {"model", "system-model"},
    {"serial_number", "system-serial-number"},
    {"uuid", "system-uuid"},
    {"asset_tag", "system-asset-tag"},
    {"host_name", "system-host-name"},
    {"configuration", "system-configuration"},
};

constexpr FactLabel firmware[]{
    {"bmc", "bmc-version"},
    {"bios", "bios-version"},
    {"cpld", "cpld-version"},
};

constexpr std::string_view powerStates[]{"PowerOn", "PoweringOn", "PoweringOff",
                                         "PowerOff", "Unknown"};

/** The name of a column among the metrics. */
std::string nameOf(const Column& column)
{
    if (!column.metric.name.empty())
    {
        return std::string(column.metric.name);
    }
    std::string name;
    for (const char letter : column.key)
    {
        const auto isCapital = letter >= 'A' && letter <= 'Z';
        name += isCapital ? "_" : "";
        name += isCapital ? static_cast<char>(letter - 'A' + 'a') : letter;
    }
    return name;
}

/** Without what stands for none. */
std::string labelText(const Value& value, Form form = Form::text)
{
    const auto text = value == Value() ? "" : textOf(value);
    return text == "-" && form == Form::dashed ? "" : text;
}

std::optional<double> quantityIn(const Value& value)
{
    if (const auto* flag = std::get_if<bool>(&value))
    {
        return *flag;
    }
    if (const auto* number = std::get_if<int64_t>(&value))
    {
        return *number;
    }
    const auto text = labelText(value);
    const auto digits = text.substr(0, text.find('%'));
    if (digits == "inf" || digits == "-inf")
    {
        return digits == "inf" ? INFINITY : -INFINITY;
    }
    return numberIn(digits);
}

/** The labels of a row that come from columns of a role. */
std::string labelsOf(const Table& table, const Cells& cells, auto role)
{
    std::set<std::string> labels;
    Texts all;
    for (std::size_t place = 0; place < cells.size(); ++place)
    {
        const auto& column = table.columns[place];
        if (column.metric.role == role)
        {
            all.push_back(
                label(nameOf(column), labelText(cells[place], column.form)));
        }
    }
    if (role == Published::identity)
    {
        std::ranges::sort(all);
    }
    return joined(all, ",");
}

/**
 * The labels that tell each row from all others. One like an earlier one gets a
 * number: Prometheus refuses all samples when two of them have the same labels.
 */
Texts identitiesOf(const Table& table, const std::vector<Cells>& rows)
{
    Texts all;
    std::set<std::string> used;
    for (const auto& cells : rows)
    {
        const auto own = labelsOf(table, cells, Published::identity);
        auto unique = own;
        for (int number = 2; !used.insert(unique).second; ++number)
        {
            unique = own;
            unique.insert(unique.size() - 1, '#' + std::to_string(number));
        }
        all.push_back(std::move(unique));
    }
    return all;
}

void addInventory(const Table& table, const std::vector<Cells>& rows,
                  Exposition& exposition)
{
    const auto names = identitiesOf(table, rows);
    const auto prefix = "morvath_" + std::string(table.metric) + '_';
    auto& info = exposition.metric(prefix + "info", table.help);
    for (std::size_t row = 0; row < rows.size(); ++row)
    {
        const auto texts = labelsOf(table, rows[row], Published::info);
        info.add(names[row] + (texts.empty() ? "" : ",") + texts, 1);
    }
    for (std::size_t place = 0; place < table.columns.size(); ++place)
    {
        const auto& column = table.columns[place];
        if (column.metric.role != Published::gauge)
        {
            continue;
        }
        const auto* factor = std::ranges::find(
            factors, column.unit, &std::pair<std::string_view, double>::first);
        auto& metric =
            exposition.metric(prefix + nameOf(column), column.metric.help);
        for (std::size_t row = 0; row < rows.size(); ++row)
        {
            if (const auto number = quantityIn(rows[row][place]))
            {
                metric.add(names[row], *number * (factor == std::end(factors)
                                                      ? 1
                                                      : factor->second));
            }
        }
    }
}

bool isNone(const Value& cell)
{
    const auto text = textOf(cell);
    return text.empty() || text == "-";
}

void addLimits(const std::vector<Cells>& rows, const Texts& names,
               double factor, Exposition& exposition)
{
    auto& numbers =
        exposition.shared("morvath_sensor_limit", "A limit of a sensor.");
    auto& alarms = exposition.shared(
        "morvath_sensor_alarm",
        "Whether a sensor is beyond a limit, by the platform.");
    for (const auto& limit : limits)
    {
        for (std::size_t row = 0; row < rows.size(); ++row)
        {
            const auto& cells = rows[row];
            if (const auto number = quantityIn(cells[limit.column]))
            {
                numbers.add(names[row] + ',' + label("limit", limit.name),
                            *number * factor);
            }
            // A sensor with neither limit of a kind has no such alarms.
            if (!isNone(cells[limit.column]) || !isNone(cells[limit.other]))
            {
                alarms.add(names[row] + ',' + label("alarm", limit.name),
                           *quantityIn(cells[limit.alarm]));
            }
        }
    }
}

void addSensors(const Table& table, const std::vector<Cells>& rows,
                Exposition& exposition)
{
    const auto factor = table.reading == "ratio" ? percent : 1;
    const std::string kind(table.metric);
    auto& readings = exposition.metric(
        "morvath_" + kind + '_' + std::string(table.reading), table.help);
    auto& available = exposition.shared("morvath_sensor_available",
                                        "Whether a sensor has a reading.");
    auto& severity = exposition.shared(
        "morvath_sensor_state",
        "The worst alarm of a sensor: 0 nominal, 1 warning, 2 critical.");
    auto names = identitiesOf(table, rows);
    for (std::size_t row = 0; row < rows.size(); ++row)
    {
        const auto number = quantityIn(rows[row][readingColumn]);
        if (number)
        {
            readings.add(names[row], *number * factor);
        }
        names[row] = label("class", kind) + ',' + names[row];
        available.add(names[row], number.has_value());
        // As other exporters of sensors have it.
        const auto state = stateOf(rows[row]);
        if (state != State::noReading)
        {
            severity.add(names[row], state == State::critical  ? 2
                                     : state == State::warning ? 1
                                                               : 0);
        }
    }
    addLimits(rows, names, factor, exposition);
}

std::string textOfFact(std::string_view name)
{
    return labelText(readFact(*findFact(name)));
}

void addHost(Exposition& exposition)
{
    exposition
        .metric("morvath_time_seconds",
                "The clock of the controller, since 1970.")
        .add("", quantityIn(readFact(*findFact("time"))).value_or(0));
    const auto state = textOfFact("power-state");
    auto& metric = exposition.metric("morvath_host_power_state",
                                     "1 for the power state of the host.");
    for (const auto one : powerStates)
    {
        if (!state.empty())
        {
            metric.add(label("state", one), state == one);
        }
    }
}

void addSystem(Exposition& exposition)
{
    Texts labels;
    for (const auto& [name, fact] : systemLabels)
    {
        labels.push_back(label(name, textOfFact(fact)));
    }
    exposition.metric("morvath_system_info", "The server.")
        .add(joined(labels, ","), 1);
}

void addFirmware(Exposition& exposition)
{
    Texts all;
    for (const auto& [component, fact] : firmware)
    {
        const auto version = textOfFact(fact);
        if (!version.empty())
        {
            all.push_back(label("component", component) + ',' +
                          label("version", version));
        }
    }
    auto& metric = exposition.metric("morvath_firmware_info",
                                     "The version of a component.");
    for (const auto& labels : all)
    {
        metric.add(labels, 1);
    }
}

} // namespace

void addMetrics(std::string_view name, Exposition& exposition)
{
    constexpr std::pair<std::string_view, void (*)(Exposition&)> ofFacts[]{
        {"host", addHost}, {"system", addSystem}, {"firmware", addFirmware}};
    for (const auto& [kind, addKind] : ofFacts)
    {
        if (kind == name)
        {
            return addKind(exposition);
        }
    }
    const auto& table = tableNamed(name);
    const auto rows = table.read(table);
    (table.root.empty() ? addInventory : addSensors)(table, rows, exposition);
}

} // namespace morvath::tools
