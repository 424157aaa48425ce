// SPDX-License-Identifier: Apache-2.0
#include "facts.hpp"

#include "screen.hpp"

#include <morvath.h>
#include <time.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace morvath::tools
{
namespace
{

using Kind = Fact::Kind;

constexpr auto anyText = "a text of at most 199 bytes";

constexpr std::string_view transitions[]{
    "off", "on", "reboot", "graceful-warm-reboot", "force-warm-reboot"};
constexpr std::string_view methods[]{"manual", "ntp"};
// The library takes the words themselves.
constexpr std::string_view policies[]{"AlwaysOn", "AlwaysOff", "LastState"};

constexpr Fact all[]{
    {"system-manufacturer", "maker of the system", getSystemManufacturer},
    {"system-model", "model of the system", getSystemModel},
    {"system-serial-number", "serial number of the system",
     getSystemSerialNumber},
    {"system-uuid", "UUID of the system", getSystemUUID},
    {"system-asset-tag", "asset tag of the system", getSystemAssetTag,
     Kind::plain, setSystemAssetTag, anyText},
    {"system-host-name", "name of the host", getSystemHostName, Kind::plain,
     setSystemHostName, anyText},
    {"system-configuration", "configuration model of the system",
     getSystemConfModel, Kind::plain, setSystemConfModel, anyText},
    {"product-manufacturer", "maker of the product", getProductManufacturer},
    {"product-name", "name of the product", getProductPrettyName},
    {"product-part-number", "part number of the product", getProductPartNum},
    {"product-serial-number", "serial number of the product",
     getProductSerialNum},
    {"product-version", "version of the product", getProductVersion},
    {"product-asset-tag", "asset tag of the product", getProductAssetTag},
    {"chassis-name", "name of the chassis", getChassisPrettyName},
    {"chassis-part-number", "part number of the chassis", getChassisPartNum},
    {"chassis-serial-number", "serial number of the chassis",
     getChassisSerialNum},
    {"board-manufacturer", "maker of the board", getBoardManufacturer},
    {"board-name", "name of the board", getBoardPrettyName},
    {"board-part-number", "part number of the board", getBoardPartNum},
    {"board-serial-number", "serial number of the board", getBoardSerialNum},
    {"board-build-date", "date when the board was made", getBoardBuildDate},
    {"bmc-manufacturer", "maker of the management controller",
     getBMCManufacturer},
    {"bmc-model", "model of the management controller", getBMCModel},
    {"bmc-part-number", "part number of the management controller",
     getBMCPartNumber},
    {"bmc-serial-number", "serial number of the management controller",
     getBMCSerialNumber},
    {"bmc-uuid", "UUID of the management controller", getBMCDeviceUUID},
    {"bmc-version", "version of the controller's firmware",
     getBMCFirmwareVersion},
    {"bios-vendor", "maker of the BIOS", getBiosVendor},
    {"bios-version", "version of the BIOS", getBiosFirmwareVersion},
    {"bios-build-date", "date of the BIOS", getBiosBuildDate},
    {"cpld-version", "version of the board's logic", getCpldFirmwareVersion},
    {"bios-boot-type", "how the host boots, as the BIOS's own code",
     getBiosBootType},
    {"bios-boot-order-0", "first boot device, as the BIOS's own code",
     getBiosBootOrder0},
    {"bios-boot-order-1", "second boot device, as the BIOS's own code",
     getBiosBootOrder1},
    {"bios-boot-order-2", "third boot device, as the BIOS's own code",
     getBiosBootOrder2},
    {"bios-boot-order-3", "fourth boot device, as the BIOS's own code",
     getBiosBootOrder3},
    {"bios-ipv4-pxe", "whether the host may boot over IPv4", getBiosIPV4Support,
     Kind::flag},
    {"bios-ipv6-pxe", "whether the host may boot over IPv6", getBiosIPV6Support,
     Kind::flag},
    {"bios-hyper-threading", "whether a core runs several threads",
     getBiosHyperThreading, Kind::flag},
    {"power-state", "power state of the host", getSystemPowerState},
    {"power-control", "last requested transition of the host",
     getSystemPowerCtl, Kind::plain, setSystemPowerCtl, "0 to 4", transitions},
    {"power-restore-policy", "what the host does when power returns",
     getPowerRestorePolicy, Kind::plain, setPowerRestorePolicy, "", policies},
    {"time", "clock in UTC; in JSON as seconds since 1970", getTimeStamp,
     Kind::time, setTimeStamp,
     "now, seconds since 1970, or a time such as 2026-11-21T14:30:00Z"},
    {"time-zone", "time zone, in seconds west of UTC", getTimeZone},
    {"time-sync", "how the clock is set", getNtpServerStatus, Kind::plain,
     setNtpServerStatus, "0 to 1", methods},
    {"ntp-servers", "NTP servers of the first network interface",
     getNtpPreferServer, Kind::list, setNtpServerIP,
     "one to three IPv4 addresses"},
};

/** An empty text counts as no value. */
Value valueFrom(int32_t (*get)(char**))
{
    char* text = nullptr;
    const auto code = get(&text);
    const std::unique_ptr<char, Release<std::free>> owned(text);
    requireSuccess(code);
    return text && *text ? Value(text) : Value();
}

template <typename Number>
Value valueFrom(int32_t (*get)(Number*))
{
    Number number = 0;
    requireSuccess(get(&number));
    return int64_t{number};
}

/** From what the library gives to what is shown. */
Value converted(const Fact& fact, const Value& value)
{
    const auto* number = std::get_if<int64_t>(&value);
    const auto* text = std::get_if<std::string>(&value);
    if (number && fact.kind == Kind::flag)
    {
        return *number != 0;
    }
    if (number && !fact.words.empty())
    {
        const auto place = static_cast<std::size_t>(*number);
        return std::string(place < fact.words.size() ? fact.words[place]
                                                     : "unknown");
    }
    return text && fact.kind == Kind::list ? Value(partsOf(*text)) : value;
}

} // namespace

Texts partsOf(const std::string& line)
{
    constexpr auto blanks = " \t\n";
    std::vector<std::string> parts;
    for (std::size_t start = 0, end = 0;
         (start = line.find_first_not_of(blanks, end)) != line.npos;)
    {
        end = std::min(line.find_first_of(blanks, start), line.size());
        parts.push_back(line.substr(start, end - start));
    }
    return parts;
}

std::span<const Fact> facts() { return all; }

const Fact* findFact(std::string_view name)
{
    const auto* found = std::ranges::find(all, name, &Fact::name);
    return found == std::end(all) ? nullptr : found;
}

Value readFact(const Fact& fact)
try
{
    // The library gives the zone as the process has it, which has not asked.
    tzset();
    return converted(
        fact, std::visit([](auto get) { return valueFrom(get); }, fact.get));
}
catch (const Absent&)
{
    return {};
}
catch (const std::bad_variant_access&)
{
    throw std::runtime_error("the property is of an unexpected type");
}

FactReading read(const Fact& fact)
{
    try
    {
        beginReading(fact.name);
        return {&fact, readFact(fact)};
    }
    catch (const std::exception& error)
    {
        return {&fact, {}, reasonOf(error)};
    }
}

std::string shownText(const Fact& fact, const Value& value)
{
    const auto* number = std::get_if<int64_t>(&value);
    return number && fact.kind == Kind::time ? utcText(*number) : textOf(value);
}

} // namespace morvath::tools
