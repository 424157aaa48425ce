// SPDX-License-Identifier: Apache-2.0
#include "facts.hpp"

#include "bus.hpp"
#include "cli/terminal_text.hpp"

#include <morvath.h>
#include <strings.h>
#include <time.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace morvath::tools
{
namespace
{

/** The library's code for a value that it refuses unsent. */
constexpr int32_t rejected = -3;

// A longer one is accepted, and then reads as none.
constexpr std::size_t longestText = 199;
constexpr std::size_t widestValue = 60;

constexpr Word transitions[]{
    {0, "off"},
    {1, "on"},
    {2, "reboot"},
    {3, "graceful-warm-reboot"},
    {4, "force-warm-reboot"},
};

constexpr Word methods[]{
    {0, "manual"},
    {1, "ntp"},
};

// The library takes the words themselves.
constexpr Word policies[]{
    {0, "AlwaysOn"},
    {1, "AlwaysOff"},
    {2, "LastState"},
};

template <typename Number>
std::optional<Number> numberOf(const std::string& text)
{
    Number number{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number)
                                               : std::nullopt;
}

std::vector<std::string> wordsOf(const std::string& line)
{
    std::istringstream parts(line);
    return {std::istream_iterator<std::string>(parts), {}};
}

// The functions of the library as the two functions of a fact, by kind. An
// empty text is no value; a list is a line with blanks in between.

Answer readText(int32_t (*get)(char**))
{
    char* text = nullptr;
    const int32_t code = get(&text);
    const std::unique_ptr<char, Release<std::free>> owned(text);
    return {code, text && *text ? Value(text) : Value()};
}

template <int32_t (*Get)(char**)>
Answer text()
{
    return readText(Get);
}

template <int32_t (*Get)(char**)>
Answer list()
{
    auto [code, value] = readText(Get);
    const auto* line = std::get_if<std::string>(&value);
    return {code, line ? Value(wordsOf(*line)) : Value()};
}

template <typename Number>
Answer readNumber(int32_t (*get)(Number*))
{
    Number number = 0;
    const int32_t code = get(&number);
    return {code, int64_t{number}};
}

template <auto Get>
Answer number()
{
    return readNumber(Get);
}

template <int32_t (*Get)(uint32_t*)>
Answer flag()
{
    auto [code, value] = readNumber(Get);
    return {code, value != Value(int64_t{0})};
}

template <int32_t (*Get)(uint32_t*), const auto& Words>
Answer word()
{
    uint32_t code = 0;
    const int32_t status = Get(&code);
    const auto found = std::ranges::find(Words, code, &Word::code);
    return {status,
            std::string(found == std::end(Words) ? "unknown" : found->text)};
}

template <int32_t (*Set)(const char*)>
int32_t toText(const std::string& value)
{
    return value.size() > longestText ? rejected : Set(value.c_str());
}

/** By its text or, for people with a table of codes, by its code. */
template <auto Set, const auto& Words>
int32_t toWord(const std::string& value)
{
    const auto code = numberOf<uint32_t>(value);
    const auto found = std::ranges::find_if(Words, [&](const Word& word) {
        return word.text == value || (code && word.code == *code);
    });
    return found == std::end(Words) ? rejected : Set(found->code);
}

/** To the library any beginning of a word is the word; here it is a slip. */
int32_t writePolicy(const std::string& value)
{
    const auto isWord = [&value](const Word& word) {
        return strcasecmp(value.c_str(), word.text.data()) == 0;
    };
    return std::ranges::any_of(policies, isWord)
               ? setPowerRestorePolicy(value.c_str())
               : rejected;
}

constexpr auto isoForm = "%Y-%m-%dT%H:%M:%S";

/** Seconds east of UTC from "Z" or "+01:00". */
std::optional<int64_t> zoneIn(std::string_view text)
{
    int hours = 0;
    int minutes = 0;
    char end = 0;
    const std::string zone(text);
    if (zone == "Z")
    {
        return 0;
    }
    if (zone.size() != 6 || (zone[0] != '+' && zone[0] != '-') ||
        std::sscanf(zone.c_str() + 1, "%2d:%2d%c", &hours, &minutes, &end) != 2)
    {
        return std::nullopt;
    }
    const auto seconds = int64_t{hours} * 3600 + int64_t{minutes} * 60;
    return zone[0] == '-' ? -seconds : seconds;
}

/** Seconds since 1970, a time as in ISO 8601, or the time of this machine. */
std::optional<int64_t> timeIn(const std::string& value)
{
    if (value == "now")
    {
        return time(nullptr);
    }
    tm parts{};
    const char* rest = strptime(value.c_str(), isoForm, &parts);
    if (!rest)
    {
        return numberOf<int64_t>(value);
    }
    parts.tm_isdst = -1;
    if (!*rest)
    {
        return mktime(&parts);
    }
    const auto zone = zoneIn(rest);
    return zone ? std::optional(timegm(&parts) - *zone) : std::nullopt;
}

int32_t writeTime(const std::string& value)
{
    const auto seconds = timeIn(value);
    return seconds && *seconds >= 0 &&
                   *seconds <= std::numeric_limits<int32_t>::max()
               ? setTimeStamp(static_cast<int32_t>(*seconds))
               : rejected;
}

std::string timeText(const Value& value)
{
    const time_t seconds = std::get<int64_t>(value);
    tm parts{};
    gmtime_r(&seconds, &parts);
    char text[32];
    strftime(text, sizeof(text), "%FT%TZ", &parts);
    return text;
}

/** The library gives the zone as the process has it, which has not asked. */
Answer zone()
{
    tzset();
    return readNumber(getTimeZone);
}

constexpr Fact all[]{
    {"system-manufacturer", "maker of the system", text<getSystemManufacturer>},
    {"system-model", "model of the system", text<getSystemModel>},
    {"system-serial-number", "serial number of the system",
     text<getSystemSerialNumber>},
    {"system-uuid", "UUID of the system", text<getSystemUUID>},
    {"system-asset-tag", "asset tag of the system", text<getSystemAssetTag>,
     toText<setSystemAssetTag>, "a text of at most 199 bytes"},
    {"system-host-name", "name of the host", text<getSystemHostName>,
     toText<setSystemHostName>, "a text of at most 199 bytes"},
    {"system-configuration", "configuration model of the system",
     text<getSystemConfModel>, toText<setSystemConfModel>,
     "a text of at most 199 bytes"},
    {"product-manufacturer", "maker of the product",
     text<getProductManufacturer>},
    {"product-name", "name of the product", text<getProductPrettyName>},
    {"product-part-number", "part number of the product",
     text<getProductPartNum>},
    {"product-serial-number", "serial number of the product",
     text<getProductSerialNum>},
    {"product-version", "version of the product", text<getProductVersion>},
    {"product-asset-tag", "asset tag of the product", text<getProductAssetTag>},
    {"chassis-name", "name of the chassis", text<getChassisPrettyName>},
    {"chassis-part-number", "part number of the chassis",
     text<getChassisPartNum>},
    {"chassis-serial-number", "serial number of the chassis",
     text<getChassisSerialNum>},
    {"board-manufacturer", "maker of the board", text<getBoardManufacturer>},
    {"board-name", "name of the board", text<getBoardPrettyName>},
    {"board-part-number", "part number of the board", text<getBoardPartNum>},
    {"board-serial-number", "serial number of the board",
     text<getBoardSerialNum>},
    {"board-build-date", "date when the board was made",
     text<getBoardBuildDate>},
    {"bmc-manufacturer", "maker of the management controller",
     text<getBMCManufacturer>},
    {"bmc-model", "model of the management controller", text<getBMCModel>},
    {"bmc-part-number", "part number of the management controller",
     text<getBMCPartNumber>},
    {"bmc-serial-number", "serial number of the management controller",
     text<getBMCSerialNumber>},
    {"bmc-uuid", "UUID of the management controller", text<getBMCDeviceUUID>},
    {"bmc-version", "version of the controller's firmware",
     text<getBMCFirmwareVersion>},
    {"bios-vendor", "maker of the BIOS", text<getBiosVendor>},
    {"bios-version", "version of the BIOS", text<getBiosFirmwareVersion>},
    {"bios-build-date", "date of the BIOS", text<getBiosBuildDate>},
    {"cpld-version", "version of the board's logic",
     text<getCpldFirmwareVersion>},
    {"bios-boot-type", "how the host boots, as the BIOS's own code",
     number<getBiosBootType>},
    {"bios-boot-order-0", "first boot device, as the BIOS's own code",
     number<getBiosBootOrder0>},
    {"bios-boot-order-1", "second boot device, as the BIOS's own code",
     number<getBiosBootOrder1>},
    {"bios-boot-order-2", "third boot device, as the BIOS's own code",
     number<getBiosBootOrder2>},
    {"bios-boot-order-3", "fourth boot device, as the BIOS's own code",
     number<getBiosBootOrder3>},
    {"bios-ipv4-pxe", "whether the host may boot over IPv4",
     flag<getBiosIPV4Support>},
    {"bios-ipv6-pxe", "whether the host may boot over IPv6",
     flag<getBiosIPV6Support>},
    {"bios-hyper-threading", "whether a core runs several threads",
     flag<getBiosHyperThreading>},
    {"power-state", "power state of the host", text<getSystemPowerState>},
    {"power-control", "last requested transition of the host",
     word<getSystemPowerCtl, transitions>,
     toWord<setSystemPowerCtl, transitions>, "0 to 4", transitions},
    {"power-restore-policy",
     "what the host does when power returns",
     text<getPowerRestorePolicy>,
     writePolicy,
     {},
     policies},
    {"time",
     "clock in UTC; in JSON as seconds since 1970",
     number<getTimeStamp>,
     writeTime,
     "now, seconds since 1970, or a time such as 2026-11-21T14:30:00Z",
     {},
     false,
     false,
     timeText},
    {"time-zone", "time zone, in seconds west of UTC", zone},
    {"time-sync", "how the clock is set", word<getNtpServerStatus, methods>,
     toWord<setNtpServerStatus, methods>, "0 to 1", methods},
    {"ntp-servers",
     "NTP servers of the first network interface",
     list<getNtpPreferServer>,
     toText<setNtpServerIP>,
     "one to three IPv4 addresses",
     {},
     true,
     true},
};

} // namespace

std::span<const Fact> facts() { return all; }

const Fact* findFact(std::string_view name)
{
    const auto* found = std::ranges::find(all, name, &Fact::name);
    return found == std::end(all) ? nullptr : found;
}

Value readFact(const Fact& fact)
try
{
    auto [code, value] = fact.read();
    requireSuccess(code);
    return std::move(value);
}
catch (const Absent&)
{
    return {};
}
catch (const std::bad_variant_access&)
{
    throw std::runtime_error("the property is of an unexpected type");
}

std::string acceptedBy(const Fact& fact)
{
    std::vector<std::string_view> kinds;
    std::ranges::transform(fact.words, std::back_inserter(kinds), &Word::text);
    if (!fact.values.empty())
    {
        kinds.push_back(fact.values);
    }
    std::string text(kinds.front());
    for (std::size_t kind = 1; kind < kinds.size(); ++kind)
    {
        text += kind + 1 < kinds.size() ? ", " : " or ";
        text += kinds[kind];
    }
    return text;
}

void writeFact(const Fact& fact, const std::string& value)
{
    const int32_t code = fact.write(value);
    if (code == rejected)
    {
        throw std::invalid_argument('"' + cli::visible(value, widestValue) +
                                    "\" is not " + acceptedBy(fact));
    }
    requireWritten(code);
    if (fact.isReadBack && readFact(fact) != Value(wordsOf(value)))
    {
        throw std::runtime_error(
            "the platform accepted the value, but does not use it");
    }
}

void requireWritten(int32_t code)
try
{
    requireSuccess(code);
}
catch (const Absent&)
{
    throw std::runtime_error("the platform does not have it");
}

} // namespace morvath::tools
