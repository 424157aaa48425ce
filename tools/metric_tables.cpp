// SPDX-License-Identifier: Apache-2.0
#include "facts.hpp"
#include "metrics.hpp"
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

constexpr auto shared = true;

constexpr std::string_view powerStates[]{"PowerOn", "PoweringOn", "PoweringOff",
                                         "PowerOff", "Unknown"};

double factorOf(std::string_view unit)
{
    const auto* found = std::ranges::find(
        factors, unit, &std::pair<std::string_view, double>::first);
    return found == std::end(factors) ? 1 : found->second;
}

/** The name of a column among the metrics. */
std::string nameOf(const Column& column)
{
    std::string name(column.metric.name);
    for (const char letter : name.empty() ? column.key : "")
    {
        const auto isCapital = letter >= 'A' && letter <= 'Z';
        name += isCapital ? "_" : "";
        name += static_cast<char>(isCapital ? letter - 'A' + 'a' : letter);
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
    const auto* text = std::get_if<std::string>(&value);
    const auto whole = text ? std::string_view(*text) : std::string_view();
    const auto digits = whole.substr(0, whole.find('%'));
    if (digits == "inf" || digits == "-inf")
    {
        return digits == "inf" ? INFINITY : -INFINITY;
    }
    return numberIn(digits);
}

/** The labels of a row that come from columns of a role. */
std::string labelsOf(const Table& table, const Cells& cells, auto role)
{
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
        auto& metric =
            exposition.metric(prefix + nameOf(column), column.metric.help);
        for (std::size_t row = 0; row < rows.size(); ++row)
        {
            if (const auto number = quantityIn(rows[row][place]))
            {
                metric.add(names[row], *number * factorOf(column.unit));
            }
        }
    }
}

bool isNone(const Value& cell)
{
    const auto* text = std::get_if<std::string>(&cell);
    return !text || text->empty() || *text == "-";
}

void addLimits(const std::vector<Cells>& rows, const Texts& names,
               double factor, Exposition& exposition)
{
    auto& numbers = exposition.metric("morvath_sensor_limit",
                                      "A limit of a sensor.", shared);
    auto& alarms = exposition.metric(
        "morvath_sensor_alarm",
        "Whether a sensor is beyond a limit, by the platform.", shared);
    for (const auto& limit : limits)
    {
        const auto ownLimit = ',' + label("limit", limit.name);
        const auto ownAlarm = ',' + label("alarm", limit.name);
        for (std::size_t row = 0; row < rows.size(); ++row)
        {
            const auto& cells = rows[row];
            if (const auto number = quantityIn(cells[limit.column]))
            {
                numbers.add(names[row] + ownLimit, *number * factor);
            }
            // A sensor with neither limit of a kind has no such alarms.
            if (!isNone(cells[limit.column]) || !isNone(cells[limit.other]))
            {
                alarms.add(names[row] + ownAlarm,
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
    auto& available = exposition.metric(
        "morvath_sensor_available", "Whether a sensor has a reading.", shared);
    auto& severity = exposition.metric(
        "morvath_sensor_state",
        "The worst alarm of a sensor: 0 nominal, 1 warning, 2 critical.",
        shared);
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

/** All facts of the system are its labels. */
void addSystem(Exposition& exposition)
{
    constexpr std::string_view prefix = "system-";
    Texts labels;
    for (const auto& fact : facts())
    {
        if (fact.name.starts_with(prefix))
        {
            std::string name(fact.name.substr(prefix.size()));
            std::ranges::replace(name, '-', '_');
            labels.push_back(label(name, textOfFact(fact.name)));
        }
    }
    exposition.metric("morvath_system_info", "The server.")
        .add(joined(labels, ","), 1);
}

void addFirmware(Exposition& exposition)
{
    std::vector<std::pair<std::string, std::string>> versions;
    for (const std::string component : {"bmc", "bios", "cpld"})
    {
        versions.emplace_back(component, textOfFact(component + "-version"));
    }
    auto& metric = exposition.metric("morvath_firmware_info",
                                     "The version of a component.");
    for (const auto& [component, version] : versions)
    {
        if (!version.empty())
        {
            metric.add(label("component", component) + ',' +
                           label("version", version),
                       1);
        }
    }
}

} // namespace

std::vector<Failure> addMetrics(std::string_view name, Exposition& exposition,
                                const std::function<void()>& prepare)
{
    constexpr std::pair<std::string_view, void (*)(Exposition&)> ofFacts[]{
        {"host", addHost}, {"system", addSystem}, {"firmware", addFirmware}};
    for (const auto& [kind, addKind] : ofFacts)
    {
        if (kind == name)
        {
            beginReading(name);
            addKind(exposition);
            return {};
        }
    }
    const auto& table = tableNamed(name);
    auto reading = read(table, Absence::emptyTable, prepare);
    (table.root.empty() ? addInventory : addSensors)(table, reading.rows,
                                                     exposition);
    return std::move(reading.failures);
}

} // namespace morvath::tools
