// SPDX-License-Identifier: Apache-2.0
#include "metrics_of_tables.hpp"

#include "exporter/tables.hpp"
#include "facts.hpp"
#include "table.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace morvath::tools
{
namespace
{

using std::string_view;

constexpr double percent = 0.01;
constexpr double kibi = 1024;
constexpr double mebi = kibi * kibi;
constexpr double gibi = kibi * mebi;
constexpr double mega = 1e6;
constexpr double bytesPerGigabit = 1e9 / 8;

/** A label, and the column or the fact that it comes from. */
struct Label
{
    string_view name;
    string_view key;
};

/** A metric, and the column that it comes from. */
struct Gauge
{
    string_view suffix;
    string_view key;
    string_view help;
    double factor = 1;
};

/** The metrics of a table of inventory. */
struct Subject
{
    string_view table;
    /** How their names begin, after "morvath_". */
    string_view name;
    string_view help;
    /** Labels of all metrics. */
    std::vector<Label> identity;
    /** Further labels of the one that ends in "_info". */
    std::vector<Label> texts{};
    std::vector<Gauge> gauges{};
};

const Subject subjects[]{
    {"power-supplies",
     "power_supply",
     "A power supply.",
     {{"power_supply", "name"}},
     {{"manufacturer", "manufacturer"},
      {"part_number", "partNumber"},
      {"serial_number", "serialNumber"},
      {"firmware_version", "firmwareVersion"}},
     {{"rating_watts", "ratingWatts", "Rated power."}}},
    {"disks",
     "disk",
     "A disk, on the bus or behind a RAID controller.",
     {{"disk", "name"}},
     {{"manufacturer", "manufacturer"},
      {"model", "model"},
      {"serial_number", "serialNumber"},
      {"media_type", "mediaType"},
      {"protocol", "protocol"},
      {"revision", "revision"},
      {"link_speed", "speed"}},
     {{"present", "present", "Whether the disk is there."},
      {"temperature_celsius", "temperatureCelsius",
       "Temperature; 0 also where the platform has none."},
      {"size_bytes", "capacityGiB", "Capacity, cut off to 2^30 bytes.", gibi},
      {"usage_ratio", "usage", "Usage as the platform has it, 0 to 1.",
       percent}}},
    {"raid-drives",
     "raid_drive",
     "A drive behind a RAID controller.",
     {{"controller", "controllerName"}, {"drive", "driveText"}},
     {{"raid_level", "raidLevel"}, {"state", "state"}}},
    {"gpus",
     "gpu",
     "A graphics processor.",
     {{"gpu", "cardName"}},
     {{"manufacturer", "manufacturer"},
      {"part_number", "partNumber"},
      {"serial_number", "serialNumber"}},
     {{"temperature_celsius", "temperature", "Temperature."},
      {"power_watts", "currentPower", "Power drawn."},
      {"fan_ratio", "fanLevel", "Speed of the fan, 0 to 1.", percent},
      {"memory_bytes", "totalMemory", "Size of the memory.", mebi}}},
    {"memory",
     "memory_module",
     "A memory module, or an empty socket.",
     {{"module", "name"}},
     {{"manufacturer", "manufacturer"},
      {"part_number", "partNumber"},
      {"serial_number", "serialNumber"},
      {"type", "memoryType"},
      {"form_factor", "formFactor"},
      {"bank", "bankLocator"},
      {"socket", "deviceLocator"},
      {"ecc", "ecc"}},
     {{"present", "present", "Whether the socket has a module."},
      {"size_bytes", "sizeKiB", "Size of the module.", kibi},
      {"frequency_max_hertz", "maxSpeedMhz", "Highest speed.", mega}}},
    {"processors",
     "processor",
     "A processor, or an empty socket.",
     {{"processor", "name"}},
     {{"manufacturer", "manufacturer"},
      {"version", "version"},
      {"part_number", "partNumber"},
      {"serial_number", "serialNumber"},
      {"architecture", "architecture"}},
     {{"present", "present", "Whether the socket has a processor."},
      {"cores", "coreCount", "Number of cores."},
      {"threads", "threadCount", "Number of threads."},
      {"frequency_hertz", "curSpeedMhz", "Present speed.", mega},
      {"frequency_max_hertz", "maxSpeedMhz", "Highest speed.", mega},
      {"l1_cache_bytes", "l1CacheKiB", "Size of the level 1 cache.", kibi},
      {"l2_cache_bytes", "l2CacheKiB", "Size of the level 2 cache.", kibi},
      {"l3_cache_bytes", "l3CacheKiB", "Size of the level 3 cache.", kibi}}},
    {"network-ports",
     "network_port",
     "A port of a network adapter of the host.",
     {{"adapter", "adapter"}, {"port", "name"}},
     {{"mac_address", "macAddress"},
      {"pci_address", "rootBdf"},
      {"type", "portType"}},
     {{"link_up", "phyLink", "Whether the port has a link."},
      {"lldp_enabled", "lldpEnabled", "Whether the port speaks LLDP."},
      {"speed_bytes_per_second", "maxSpeedGbps", "Highest speed.",
       bytesPerGigabit},
      {"drop_ratio", "dropRatio", "Dropped packets by packets, 0 to 1."}}},
    {"bmc-network",
     "bmc_interface",
     "A network interface of the management controller.",
     {{"interface", "interface"}},
     {{"mac_address", "macAddress"},
      {"ip_address", "ipAddress"},
      {"netmask", "netmask"},
      {"gateway", "defaultGateway"},
      {"origin", "addressOrigin"}},
     {{"enabled", "enabled", "Whether the interface is switched on."}}},
    {"network-adapters",
     "network_adapter",
     "A network adapter of the host.",
     {{"adapter", "name"}},
     {{"manufacturer", "manufacturer"},
      {"model", "model"},
      {"variant", "subModel"},
      {"technology", "networkTech"}},
     {{"ports", "portNum", "Number of ports."}}},
    {"pcie-slots",
     "pcie_slot",
     "A PCIe slot.",
     {{"slot", "name"}},
     {{"manufacturer", "manufacturer"}, {"location", "locationCode"}},
     {{"present", "present", "Whether the slot has a card."}}},
    {"raid-controllers",
     "raid_controller",
     "A RAID controller.",
     {{"controller", "name"}},
     {{"vendor_id", "vendorId"},
      {"device_id", "deviceId"},
      {"subvendor_id", "subVendorId"},
      {"subdevice_id", "subDeviceId"},
      {"drive_interfaces", "driveInterfaces"},
      {"host_interface", "hostInterface"},
      {"raid_levels", "supportedRaidLevels"}}},
};

/** The sensors of a table. */
struct SensorClass
{
    string_view table;
    /** A label. */
    string_view name;
    string_view metric;
    string_view help;
    double factor = 1;
};

constexpr SensorClass sensorClasses[]{
    {"temperatures", "temperature", "morvath_temperature_celsius",
     "Temperature."},
    {"fans", "fan", "morvath_fan_speed_rpm", "Speed of a fan."},
    {"voltages", "voltage", "morvath_voltage_volts", "Voltage."},
    {"currents", "current", "morvath_current_amperes", "Current."},
    {"powers", "power", "morvath_power_watts", "Power."},
    {"pwms", "pwm", "morvath_pwm_ratio", "How a fan is driven, 0 to 1.",
     percent},
};

/** A limit of a sensor: the columns, and the other one of its kind. */
struct Limit
{
    string_view name;
    string_view key;
    string_view otherKey;
    string_view alarmKey;
};

constexpr Limit limits[]{
    {"critical_high", "criticalHigh", "criticalLow", "criticalAlarmHigh"},
    {"critical_low", "criticalLow", "criticalHigh", "criticalAlarmLow"},
    {"warning_high", "warningHigh", "warningLow", "warningAlarmHigh"},
    {"warning_low", "warningLow", "warningHigh", "warningAlarmLow"},
};

/** As other exporters of sensors have them. */
constexpr std::pair<string_view, double> states[]{
    {"ok", 0},
    {"no limits", 0},
    {"warning", 1},
    {"critical", 2},
};

constexpr Label systemLabels[]{
    {"manufacturer", "system-manufacturer"},
    {"model", "system-model"},
    {"serial_number", "system-serial-number"},
    {"uuid", "system-uuid"},
    {"asset_tag", "system-asset-tag"},
    {"host_name", "system-host-name"},
    {"configuration", "system-configuration"},
};

constexpr Label firmware[]{
    {"bmc", "bmc-version"},
    {"bios", "bios-version"},
    {"cpld", "cpld-version"},
};

constexpr string_view powerStates[]{"PowerOn", "PoweringOn", "PoweringOff",
                                    "PowerOff", "Unknown"};

/** What was read of a table, by columns. */
class Rows
{
  public:
    explicit Rows(string_view name) :
        table(*std::ranges::find(tables(), name, &Table::name)),
        rows(table.read())
    {}

    std::size_t size() const { return rows.size(); }

    std::size_t column(string_view key) const
    {
        return std::ranges::find(table.columns, key, &Column::key) -
               table.columns.begin();
    }

    const Value& at(std::size_t row, std::size_t column) const
    {
        return rows[row][column];
    }

    /** Without what stands for none. */
    std::string text(std::size_t row, std::size_t column) const
    {
        const auto& value = rows[row][column];
        const bool isNone = std::holds_alternative<std::monostate>(value);
        auto text = isNone ? "" : textOf(value);
        const bool isDash =
            text == "-" && table.columns[column].form == Form::dashed;
        return isDash ? "" : text;
    }

  private:
    const Table& table;
    const std::vector<Cells> rows;
};

std::optional<double> numberOf(const Value& value)
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
    if (!text)
    {
        return std::nullopt;
    }
    const auto digits = text->substr(0, text->find('%'));
    if (digits == "inf" || digits == "-inf")
    {
        return digits == "inf" ? INFINITY : -INFINITY;
    }
    return numberIn(digits);
}

/**
 * The labels that tell each row from all others. One like an earlier one gets a
 * number: Prometheus refuses all samples when two of them have the same labels.
 */
std::vector<std::string> identities(const Rows& rows,
                                    std::span<const Label> labels)
{
    std::vector<std::string> all;
    std::set<std::string> used;
    for (std::size_t row = 0; row < rows.size(); ++row)
    {
        std::string own;
        for (const auto& [name, key] : labels)
        {
            own += own.empty() ? "" : ",";
            own += label(name, rows.text(row, rows.column(key)));
        }
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

void addInfo(const Subject& subject, const Rows& rows,
             std::span<const std::string> names, Metric& metric)
{
    for (std::size_t row = 0; row < rows.size(); ++row)
    {
        auto labels = names[row];
        for (const auto& [name, key] : subject.texts)
        {
            labels += ',' + label(name, rows.text(row, rows.column(key)));
        }
        metric.add(labels, 1);
    }
}

void addGauge(const Gauge& gauge, const Rows& rows,
              std::span<const std::string> names, Metric& metric)
{
    const auto column = rows.column(gauge.key);
    for (std::size_t row = 0; row < rows.size(); ++row)
    {
        if (const auto number = numberOf(rows.at(row, column)))
        {
            metric.add(names[row], *number * gauge.factor);
        }
    }
}

void readSubject(string_view table, Exposition& exposition)
{
    const auto& subject = *std::ranges::find(subjects, table, &Subject::table);
    const Rows rows(table);
    const auto names = identities(rows, subject.identity);
    const auto prefix = "morvath_" + std::string(subject.name) + '_';
    addInfo(subject, rows, names,
            exposition.metric(prefix + "info", subject.help));
    for (const auto& gauge : subject.gauges)
    {
        addGauge(
            gauge, rows, names,
            exposition.metric(prefix + std::string(gauge.suffix), gauge.help));
    }
}

void addLimit(const Limit& limit, const SensorClass& sensors, const Rows& rows,
              std::span<const std::string> names, Exposition& exposition)
{
    auto& limitMetric =
        exposition.shared("morvath_sensor_limit", "A limit of a sensor.");
    auto& alarmMetric = exposition.shared(
        "morvath_sensor_alarm", "Whether a sensor is beyond a limit, by the "
                                "platform.");
    const auto column = rows.column(limit.key);
    const auto other = rows.column(limit.otherKey);
    const auto alarm = rows.column(limit.alarmKey);
    const auto limitLabel = ',' + label("limit", limit.name);
    const auto alarmLabel = ',' + label("alarm", limit.name);
    const auto isNone = [&rows](std::size_t row, std::size_t column) {
        const auto text = rows.text(row, column);
        return text.empty() || text == "-";
    };
    for (std::size_t row = 0; row < rows.size(); ++row)
    {
        if (const auto number = numberOf(rows.at(row, column)))
        {
            limitMetric.add(names[row] + limitLabel, *number * sensors.factor);
        }
        // A sensor with neither limit of a kind has no such alarms.
        if (!isNone(row, column) || !isNone(row, other))
        {
            alarmMetric.add(names[row] + alarmLabel,
                            *numberOf(rows.at(row, alarm)));
        }
    }
}

void addReadings(const SensorClass& sensors, const Rows& rows,
                 std::span<const std::string> names, Exposition& exposition)
{
    auto& readings =
        exposition.metric(std::string(sensors.metric), sensors.help);
    auto& available = exposition.shared("morvath_sensor_available",
                                        "Whether a sensor has a reading.");
    auto& state = exposition.shared(
        "morvath_sensor_state",
        "The worst alarm of a sensor: 0 nominal, 1 warning, 2 critical.");
    const auto classLabel = label("class", sensors.name) + ',';
    const auto valueColumn = rows.column("value");
    const auto stateColumn = rows.column("state");
    for (std::size_t row = 0; row < rows.size(); ++row)
    {
        const auto number = numberOf(rows.at(row, valueColumn));
        if (number)
        {
            readings.add(names[row], *number * sensors.factor);
        }
        available.add(classLabel + names[row], number.has_value());
        const auto* found =
            std::ranges::find(states, rows.text(row, stateColumn),
                              &std::pair<string_view, double>::first);
        if (found != std::end(states))
        {
            state.add(classLabel + names[row], found->second);
        }
    }
}

void readSensors(string_view table, Exposition& exposition)
{
    const auto& sensors =
        *std::ranges::find(sensorClasses, table, &SensorClass::table);
    const Rows rows(table);
    constexpr Label identity[]{{"sensor", "name"}};
    auto names = identities(rows, identity);
    addReadings(sensors, rows, names, exposition);
    for (auto& name : names)
    {
        name.insert(0, label("class", sensors.name) + ',');
    }
    for (const auto& limit : limits)
    {
        addLimit(limit, sensors, rows, names, exposition);
    }
}

std::string textOfFact(string_view name)
{
    const auto value = readFact(*findFact(name));
    const auto* text = std::get_if<std::string>(&value);
    return text ? *text : "";
}

void readHost(string_view, Exposition& exposition)
{
    exposition
        .metric("morvath_time_seconds",
                "The clock of the controller, since 1970.")
        .add("", numberOf(readFact(*findFact("time"))).value_or(0));
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

void readSystem(string_view, Exposition& exposition)
{
    std::string labels;
    for (const auto& [name, fact] : systemLabels)
    {
        labels += labels.empty() ? "" : ",";
        labels += label(name, textOfFact(fact));
    }
    exposition.metric("morvath_system_info", "The server.").add(labels, 1);
}

void readFirmware(string_view, Exposition& exposition)
{
    std::vector<std::string> all;
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

auto readerOf(string_view table)
{
    constexpr std::pair<string_view, decltype(MetricTable::read)> facts[]{
        {"host", readHost}, {"system", readSystem}, {"firmware", readFirmware}};
    for (const auto& [name, read] : facts)
    {
        if (name == table)
        {
            return read;
        }
    }
    return std::ranges::find(sensorClasses, table, &SensorClass::table) !=
                   std::end(sensorClasses)
               ? readSensors
               : readSubject;
}

} // namespace

std::span<const MetricTable> metricTables()
{
    static const auto all = [] {
        std::array<MetricTable, exporter::tableNames.size()> made;
        std::ranges::transform(exporter::tableNames, made.begin(),
                               [](string_view name) {
                                   return MetricTable{name, readerOf(name)};
                               });
        return made;
    }();
    return all;
}

} // namespace morvath::tools
