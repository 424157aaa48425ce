// SPDX-License-Identifier: Apache-2.0
#include "table.hpp"

#include "screen.hpp"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <new>
#include <stdexcept>

namespace morvath::tools
{
namespace
{

/** The first of the properties in need that an object does not have. */
std::string_view missingOf(std::string_view needs)
{
    while (!needs.empty())
    {
        const auto need = needs.substr(0, needs.find(' '));
        needs.remove_prefix(std::min(needs.size(), need.size() + 1));
        const auto colon = std::min(need.find(':'), need.size());
        const auto with = need.substr(std::min(colon + 1, need.size()));
        if (!hasProperty(need.substr(0, colon)) &&
            (with.empty() || hasProperty(with)))
        {
            return need.substr(0, colon);
        }
    }
    return {};
}

/** Why an object that was read all the same makes no record. */
std::string defectOf(const Table& table, const std::exception& error)
{
    if (dynamic_cast<const std::out_of_range*>(&error))
    {
        return "a number does not fit";
    }
    if (dynamic_cast<const std::invalid_argument*>(&error))
    {
        return "a property that should be a number is not one";
    }
    if (!dynamic_cast<const std::logic_error*>(&error))
    {
        return error.what();
    }
    const std::string missing(missingOf(table.needs));
    return missing.empty() ? "a property that is needed is missing"
                           : "has no " + missing;
}

/** The reading of each object alone; those that fail are named. */
void readOneByOne(TableReading& reading, const std::function<void()>& prepare)
{
    const auto& table = *reading.table;
    const auto objects = listedObjects();
    for (std::size_t place = 0; place < objects.size(); ++place)
    {
        const OnlyObject only(place);
        try
        {
            if (prepare)
            {
                prepare();
            }
            std::ranges::move(table.read(table),
                              std::back_inserter(reading.rows));
        }
        catch (const std::exception& error)
        {
            const auto& failure = lastFailure();
            reading.failures.push_back(
                {objects[place],
                 failure ? failure->reason : defectOf(table, error)});
        }
    }
}

} // namespace

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
    const auto* list = std::get_if<std::vector<std::string>>(&value);
    return list ? joined(*list, " ") : "-";
}

std::optional<double> numberIn(std::string_view text)
{
    double number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    // A number is all digits; "nan" and "inf" are not numbers.
    return error == std::errc() && stop == end && number - number == 0
               ? std::optional(number)
               : std::nullopt;
}

std::size_t columnOf(const Table& table, std::string_view key)
{
    return std::ranges::find(table.columns, key, &Column::key) -
           table.columns.begin();
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

TableReading read(const Table& table, Absence absence,
                  const std::function<void()>& prepare)
{
    TableReading reading{&table};
    try
    {
        beginReading(table.name);
        reading.rows = table.read(table);
    }
    catch (const Absent& error)
    {
        if (absence == Absence::failure)
        {
            reading.failures.push_back({{}, error.what()});
        }
    }
    catch (const std::exception& error)
    {
        const auto reason = reasonOf(error);
        // Otherwise it was not an object that failed.
        if (lastFailure() || dynamic_cast<const std::logic_error*>(&error))
        {
            readOneByOne(reading, prepare);
        }
        if (reading.failures.empty() && reading.rows.empty())
        {
            reading.failures.push_back({{}, reason});
        }
    }
    reading.isUnread = reading.rows.empty() && !reading.failures.empty();
    return reading;
}

std::string textOf(const Failure& failure)
{
    const auto& [object, message] = failure;
    return (object.path.empty() ? ""
                                : object.path + ": " + object.service + ": ") +
           message;
}

void complainAbout(const TableReading& reading)
{
    for (const auto& failure : reading.failures)
    {
        complain(reading.table->name + ": " + textOf(failure));
    }
}

std::string reasonOf(const std::exception& error)
{
    const auto& failure = lastFailure();
    return failure ? failure->object.service + ": " + failure->reason
                   : error.what();
}

} // namespace morvath::tools
