// SPDX-License-Identifier: Apache-2.0
#include "get.hpp"

#include "document.hpp"
#include "text_table.hpp"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>

namespace morvath::tools
{
namespace
{

/** A fact's value, or what went wrong. */
struct Reading
{
    const Fact* fact;
    Value value;
    std::optional<std::string> failure;
};

void complain(const Fact& fact, const std::string& message)
{
    std::fprintf(stderr, "morvath: %s: %s\n", fact.name.data(),
                 message.c_str());
}

Reading readOne(const Fact& fact, std::optional<Timeout> timeout)
{
    try
    {
        useBus(timeout);
        return {&fact, readFact(fact), std::nullopt};
    }
    catch (const std::exception& error)
    {
        complain(fact, error.what());
        return {&fact, nullptr, error.what()};
    }
}

std::string documentOf(const std::vector<Reading>& readings)
{
    Document document("facts");
    for (const auto& [fact, value, failure] : readings)
    {
        document.add(std::string(fact->name), value, failure);
    }
    return document.inLines();
}

std::string shown(const Value& value)
{
    if (!value.is_array())
    {
        return textOf(value);
    }
    std::string line;
    for (const auto& part : value)
    {
        line.append(line.empty() ? "" : " ").append(textOf(part));
    }
    return line;
}

/** A single value stands alone, for scripts; several have their names. */
std::string textsOf(const std::vector<Reading>& readings)
{
    std::size_t width = 0;
    for (const auto& reading : readings)
    {
        width = std::max(width, reading.fact->name.size());
    }
    std::string text;
    for (const auto& [fact, value, failure] : readings)
    {
        if (failure)
        {
            continue;
        }
        if (readings.size() > 1)
        {
            text.append(fact->name).append(": ");
            text.append(width - fact->name.size(), ' ');
        }
        text += shown(value) + '\n';
    }
    return text;
}

} // namespace

bool get(const GetOptions& options)
{
    std::vector<Reading> readings;
    bool complete = true;
    for (const auto* fact : options.facts)
    {
        const auto& reading =
            readings.emplace_back(readOne(*fact, options.timeout));
        const bool isMissing = !reading.failure && reading.value.is_null();
        if (isMissing && !options.all)
        {
            complain(*fact, "the platform does not have it");
        }
        complete &= !reading.failure && (options.all || !isMissing);
    }
    const auto text = options.asJson ? documentOf(readings) : textsOf(readings);
    std::fwrite(text.data(), 1, text.size(), stdout);
    return complete;
}

} // namespace morvath::tools
