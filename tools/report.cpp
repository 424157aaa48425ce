// SPDX-License-Identifier: Apache-2.0
#include "report.hpp"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <exception>
#include <iterator>
#include <stdexcept>

namespace morvath::tools
{
namespace
{

/** Why an object that was read all the same makes no record. */
std::string defectOf(const Table& table, const std::exception& error)
{
    for (const auto& [name, with] : table.needs)
    {
        if (!hasProperty(name) && (with.empty() || hasProperty(with)))
        {
            return "has no " + name;
        }
    }
    if (dynamic_cast<const std::out_of_range*>(&error))
    {
        return "a number does not fit";
    }
    if (dynamic_cast<const std::invalid_argument*>(&error))
    {
        return "a property that is to be a number is none";
    }
    return dynamic_cast<const std::logic_error*>(&error)
               ? "a property that is needed is missing"
               : error.what();
}

std::string reasonOf(const std::exception& error)
{
    const auto& failure = lastFailure();
    return failure ? failure->object.service + ": " + failure->reason
                   : error.what();
}

/** The reading of each object alone; those that fail are named. */
void readOneByOne(TableReading& reading)
{
    const auto objects = listedObjects();
    for (std::size_t place = 0; place < objects.size(); ++place)
    {
        const OnlyObject only(place);
        try
        {
            std::ranges::move(reading.table->read(),
                              std::back_inserter(reading.rows));
        }
        catch (const std::exception& error)
        {
            const auto& failure = lastFailure();
            reading.failures.push_back(
                {objects[place],
                 failure ? failure->reason : defectOf(*reading.table, error)});
        }
    }
}

} // namespace

TableReading read(const Table& table, Absence absence)
{
    TableReading reading{&table, {}, {}};
    try
    {
        beginReading(table.name);
        reading.rows = table.read();
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
        // Otherwise it is no object that failed.
        if (lastFailure() || dynamic_cast<const std::logic_error*>(&error))
        {
            readOneByOne(reading);
        }
        if (reading.failures.empty() && reading.rows.empty())
        {
            reading.failures.push_back({{}, reason});
        }
    }
    reading.isUnread = reading.rows.empty() && !reading.failures.empty();
    return reading;
}

FactReading read(const Fact& fact)
{
    try
    {
        beginReading(fact.name);
        return {&fact, readFact(fact), std::nullopt};
    }
    catch (const std::exception& error)
    {
        return {&fact, {}, reasonOf(error)};
    }
}

std::string textOf(const TableReading& reading, const Failure& failure)
{
    auto text = reading.table->name + ": ";
    const auto& [path, service] = failure.object;
    if (!path.empty())
    {
        text.append(path).append(": ").append(service).append(": ");
    }
    return text + failure.message;
}

void complainAbout(const TableReading& reading)
{
    for (const auto& failure : reading.failures)
    {
        complain(textOf(reading, failure));
    }
}

void complainAbout(const FactReading& reading)
{
    if (reading.failure)
    {
        complain(std::string(reading.fact->name) + ": " + *reading.failure);
    }
}

std::string hostName()
{
    std::array<char, 256> name{};
    gethostname(name.data(), name.size() - 1);
    return name.data();
}

} // namespace morvath::tools
