// SPDX-License-Identifier: Apache-2.0
#include "table.hpp"

#include "bus.hpp"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <new>
#include <stdexcept>

namespace morvath::tools
{
namespace
{

constexpr auto missing = "-";

constexpr std::pair<std::string_view, std::string_view> unitSigns[]{
    {"DegreesC", "°C"}, {"RPMS", "RPM"},       {"Volts", "V"},
    {"Amperes", "A"},   {"Watts", "W"},        {"Percent", "%"},
    {"Hertz", "Hz"},    {"Joules", "J"},       {"LPM", "l/min"},
    {"Meters", "m"},    {"Pascals", "Pa"},     {"PercentRH", "%RH"},
    {"Radians", "rad"}, {"AmpereHours", "Ah"},
};

std::vector<Table> allTables()
{
    std::vector<Table> all;
    for (const auto ofAKind :
         {inventoryTables, raidTables, sensorTables, networkTables})
    {
        std::ranges::move(ofAKind(), std::back_inserter(all));
    }
    return all;
}

} // namespace

Value valueOf(char* text) { return text ? Value(text) : Value(); }

Value valueOf(int32_t number) { return int64_t{number}; }

Value valueOf(uint32_t number) { return int64_t{number}; }

Value yesOrNo(int32_t flag) { return flag != 0; }

std::string textOf(const Value& value)
{
    if (const auto* text = std::get_if<std::string>(&value))
    {
        return *text;
    }
    if (const auto* number = std::get_if<int64_t>(&value))
    {
        return std::to_string(*number);
    }
    if (const auto* flag = std::get_if<bool>(&value))
    {
        return *flag ? "yes" : "no";
    }
    if (const auto* list = std::get_if<std::vector<std::string>>(&value))
    {
        std::string line;
        for (const auto& part : *list)
        {
            line.append(line.empty() ? "" : " ").append(part);
        }
        return line;
    }
    return missing;
}

std::optional<double> numberIn(const std::string& text)
{
    double number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    // A number is all digits; "nan" and "inf" are none.
    return error == std::errc() && stop == end && number - number == 0
               ? std::optional(number)
               : std::nullopt;
}

std::string signOf(const std::string& unit)
{
    const auto* found = std::ranges::find_if(
        unitSigns, [&unit](const auto& one) { return one.first == unit; });
    return std::string(found == std::end(unitSigns) ? unit : found->second);
}

const std::vector<Table>& tables()
{
    static const auto all = allTables();
    return all;
}

const char* Absent::what() const noexcept
{
    return "the platform has nothing of this kind";
}

void requireSuccess(int32_t code)
{
    const auto& failure = lastFailure();
    switch (code)
    {
        case 0: return;
        case -1:
            if (failure && failure->isAbsence)
            {
                throw Absent();
            }
            throw std::runtime_error(
                failure ? failure->object.service + ": " + failure->reason
                        : "the platform holds an unknown value");
        case -2: throw std::bad_alloc();
        case -4: throw std::runtime_error("the RAID management library failed");
        default:
            throw std::runtime_error("the library reports code " +
                                     std::to_string(code));
    }
}

} // namespace morvath::tools
