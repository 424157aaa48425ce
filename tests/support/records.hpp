#pragma once

#include "support/machine.hpp"

#include <gtest/gtest.h>
#include <sdbusplus/exception.hpp>

#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

namespace morvath::tests
{

template <typename Record>
Record recordOf(void (*)(Record*));

/** The records of one call, released as a caller would. */
template <auto Get, auto Release>
struct Records
{
    using Record = decltype(recordOf(Release));

    Record* records = nullptr;
    int32_t count = 0;

    ~Records()
    {
        for (int32_t index = 0; records && index < count; ++index)
        {
            Release(&records[index]);
        }
        std::free(records);
    }

    int32_t read()
    {
        return Get(&records, &count);
    }
};

inline std::string textOf(const char* text)
{
    return text ? text : "null";
}

inline std::string textOf(int64_t number)
{
    return std::to_string(number);
}

/** All fields of a record, in their order. */
template <typename... Field>
std::string describe(const Field&... fields)
{
    std::string line;
    ((line += (line.empty() ? "" : "|") + textOf(fields)), ...);
    return line;
}

/** A code or an exception in words. */
template <typename Call>
std::string outcomeOf(const Call& call)
{
    try
    {
        return std::to_string(call());
    }
    catch (const sdbusplus::exception::SdBusError& error)
    {
        return "bus error";
    }
    catch (const std::invalid_argument& error)
    {
        return std::string("invalid argument: ") + error.what();
    }
    catch (const std::out_of_range& error)
    {
        return std::string("out of range: ") + error.what();
    }
    catch (const std::logic_error& error)
    {
        return std::string("logic error: ") + error.what();
    }
}

constexpr auto nullText =
    "logic error: basic_string: construction from null is not valid";

/** What became of a call, and a line for each record that it stored. */
using Lines = std::vector<std::string>;

template <typename Table, typename Describe>
Lines linesOf(const sim::Scenario& scenario, const Describe& describeRecord)
{
    sim::Platform platform(scenario);
    Table table;
    Lines lines{outcomeOf([&table] { return table.read(); })};
    for (int32_t index = 0; table.records && index < table.count; ++index)
    {
        lines.push_back(describeRecord(table.records[index]));
    }
    return lines;
}

/** An object that differs from another, and what a table makes of it. */
struct Variant
{
    const char* what;
    Json changes;
    Lines expected;
};

/** The properties with others in their place; null for one that is missing. */
inline Json changed(Json properties, const Json& changes)
{
    for (const auto& [name, value] : changes.items())
    {
        properties[name] = value;
        if (value.is_null())
        {
            properties.erase(name);
        }
    }
    return properties;
}

template <typename Table, typename Describe>
void expectVariants(const std::string& path, const std::string& interface,
                    const Json& properties, const Describe& describeRecord,
                    const std::vector<Variant>& variants)
{
    for (const auto& variant : variants)
    {
        const auto machine =
            Machine().owns(path, "com.example.Inventory",
                           {{interface, changed(properties, variant.changes)}});
        EXPECT_EQ(linesOf<Table>(machine.scenario(), describeRecord),
                  variant.expected)
            << variant.what;
    }
}

} // namespace morvath::tests
