// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bus/c_memory.hpp"
#include "fuzz/input.hpp"
#include "fuzz/words.hpp"
#include "morvath.h"

#include <array>
#include <concepts>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

/*
 * How the exports are called: by the types of their parameters, of which each
 * has one meaning in the whole interface, and with owners as a careful caller
 * would have them, since outputs may be there when a function raises.
 */
namespace morvath::fuzz
{

constexpr std::size_t longestArgument = 24;

inline std::string argument(Input& input)
{
    return input.oneOf(arguments).substr(0, longestArgument);
}

/** What a parameter gets. */
template <typename T>
struct Argument;

template <std::integral Number>
struct Argument<Number>
{
    explicit Argument(Input& input) : value(input.number<Number>()) {}

    Number pass()
    {
        return value;
    }

    Number value;
};

template <>
struct Argument<const char*>
{
    explicit Argument(Input& input) : text(argument(input)) {}

    const char* pass()
    {
        return text.c_str();
    }

    std::string text;
};

/** A list of one. */
template <>
struct Argument<const char**> : Argument<const char*>
{
    using Argument<const char*>::Argument;

    const char** pass()
    {
        texts[0] = text.c_str();
        return texts.data();
    }

    std::array<const char*, 2> texts{};
};

/** An output. */
template <typename Value>
struct Argument<Value*>
{
    explicit Argument(Input&) {}

    Value* pass()
    {
        return &value;
    }

    Value value{};
};

template <>
struct Argument<char**>
{
    explicit Argument(Input&) {}
    ~Argument()
    {
        // Read to its end, which must be inside of what is released.
        if (text && std::strlen(text) == SIZE_MAX)
        {
            std::abort();
        }
        std::free(text);
    }

    char** pass()
    {
        return &text;
    }

    char* text = nullptr;
};

template <typename... Parameters>
int32_t callWith(int32_t (*function)(Parameters...), Input& input)
{
    const auto pass = [&](Argument<Parameters>... arguments) {
        return function(arguments.pass()...);
    };
    return pass(Argument<Parameters>(input)...);
}

template <auto Function>
int32_t call(Input& input)
{
    return callWith(Function, input);
}

template <typename Record>
Record recordOf(void (*)(Record*));

/** The records of a table. */
template <auto Release>
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
};

template <auto Get, auto Release>
int32_t readTable(Input&)
{
    Records<Release> table;
    const auto code = Get(&table.records, &table.count);
    if (code != 0)
    {
        // Outputs mean nothing then; had there been any, they would leak.
        table.records = nullptr;
    }
    return code;
}

} // namespace morvath::fuzz
