// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "morvath.hpp"
#include "support/machine.hpp"

#include <gtest/gtest.h>
#include <sdbusplus/exception.hpp>

#include <cstdint>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string>
#include <tuple>
#include <variant>
#include <vector>

namespace morvath::tests
{

template <typename Record, typename... Arguments>
Record recordOf(int32_t (*)(Record**, int32_t*, Arguments...));

/** The records of what a table function stores. */
template <auto Get>
using RecordsOf = Records<decltype(recordOf(Get))>;

inline std::string textOf(const char* text) { return text ? text : "null"; }

inline std::string textOf(int64_t number) { return std::to_string(number); }

/** Releases texts and their array. */
inline std::string taken(char** texts, std::size_t count)
{
    std::string line;
    for (std::size_t index = 0; index < count; ++index)
    {
        line += textOf(texts[index]) + '|';
        std::free(texts[index]);
    }
    std::free(texts);
    return line;
}

#define FIELDS_OF(Record, ...)          \
    inline auto fieldsOf(Record& entry) \
    {                                   \
        auto& [__VA_ARGS__] = entry;    \
        return std::tie(__VA_ARGS__);   \
    }
FIELDS_OF(PsuInfoEntry, a, b, c, d, e, f, g, h, i)
FIELDS_OF(PcieInfoEntry, a, b, c, d, e, f, g)
FIELDS_OF(NetAdapterInfoEntry, a, b, c, d, e, f, g, h, i)
FIELDS_OF(GpuInfoEntry, a, b, c, d, e, f, g, h, i, j, k)
FIELDS_OF(MemInfoEntry, a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p)
FIELDS_OF(CpuInfoEntry, a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r)
FIELDS_OF(BmcSensorEntry, a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p)
FIELDS_OF(BmcNetworkInfoEntry, a, b, c, d, e, f, g, h, i, j, k)
FIELDS_OF(PortInfoEntry, a, b, c, d, e, f, g, h, i, j, k, l)
FIELDS_OF(HddInfoEntry, a, b, c, d, e, f, g, h, i, j, k, l, m, n, o)
FIELDS_OF(RaidControllerEntry, a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p,
          q, r, s, t)
FIELDS_OF(RaidHddEntry, a, b, c, d, e, f, g)
#undef FIELDS_OF

/** All fields of a record, in their order. */
template <typename Record>
std::string lineOf(Record entry)
{
    std::string line;
    const auto add = [&line](const auto&... fields) {
        ((line += (line.empty() ? "" : "|") + textOf(fields)), ...);
    };
    std::apply(add, fieldsOf(entry));
    return line;
}

/** The code, or what was raised. */
template <typename Call>
std::string outcomeOf(const Call& call)
{
    try
    {
        return std::to_string(call());
    }
    catch (const sdbusplus::exception::SdBusError&)
    {
        return "bus-error";
    }
    catch (const std::bad_alloc&)
    {
        return "no-memory";
    }
    catch (const std::bad_variant_access& error)
    {
        return std::string("another type: ") + error.what();
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
        return error.what();
    }
}

constexpr auto nullText = "basic_string: construction from null is not valid";

/** What became of a call, and a line for each record that it stored. */
using Lines = std::vector<std::string>;

template <auto Get>
Lines linesOf(int32_t countBefore = 0)
{
    RecordsOf<Get> table;
    const auto read = [&](auto** records, int32_t* count) {
        *count = countBefore;
        return Get(records, count);
    };
    Lines lines{outcomeOf([&] { return table.fill(read); })};
    for (const auto& record : table)
    {
        lines.push_back(lineOf(record));
    }
    return lines;
}

template <auto Get>
Lines linesOf(const Machine& machine, int32_t countBefore = 0)
{
    const sim::Platform platform(machine.scenario());
    return linesOf<Get>(countBefore);
}

/** The outcome, then what a table function leaves in its outputs, in words. */
template <auto Get>
std::string outputsOf(int32_t countBefore)
{
    decltype(recordOf(Get)) marker{};
    auto* records = &marker;
    int32_t count = countBefore;
    const auto outcome = outcomeOf([&] { return Get(&records, &count); });
    const auto* array = !records             ? " null "
                        : records == &marker ? " untouched "
                                             : " array ";
    // One that comes with a code is released already.
    if (records != &marker && !outcome.starts_with('-'))
    {
        std::free(records);
    }
    return outcome + array + std::to_string(count);
}

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

/** What the table makes of one object with the properties, changed. */
template <auto Get>
void expectVariants(const std::string& path, const std::string& interface,
                    const Json& properties,
                    const std::vector<std::pair<Json, Lines>>& variants)
{
    for (const auto& [changes, lines] : variants)
    {
        const auto machine =
            Machine().owns(path, "com.example.Inventory",
                           {{interface, changed(properties, changes)}});
        EXPECT_EQ(linesOf<Get>(machine), lines) << changes;
    }
}

} // namespace morvath::tests
