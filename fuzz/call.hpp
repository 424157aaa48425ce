// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "base/c_memory.hpp"
#include "fuzz/input.hpp"
#include "fuzz/words.hpp"
#include "morvath.hpp"

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

    Number pass() { return value; }

    Number value;
};

template <>
struct Argument<const char*>
{
    explicit Argument(Input& input) : text(argument(input)) {}

    const char* pass() { return text.c_str(); }

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

    Value* pass() { return &value; }

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

    char** pass() { return &text; }

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
int32_t readRecords(int32_t (*get)(Record**, int32_t*))
{
    return Records<Record>().fill(get);
}

template <auto Get>
int32_t readTable(Input&)
{
    return readRecords(Get);
}

} // namespace morvath::fuzz
