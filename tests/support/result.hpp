// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sdbusplus/exception.hpp>

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <ostream>
#include <string>

namespace morvath::tests
{

/** What a getter returned, and what it wrote when it wrote something. */
template <typename Value>
struct Result
{
    int32_t code;
    std::optional<Value> value;

    bool operator==(const Result&) const = default;

    friend std::ostream& operator<<(std::ostream& stream, const Result& result)
    {
        stream << result.code << ' ';
        return result.value ? stream << *result.value : stream << "nothing";
    }
};

using TextResult = Result<std::string>;
using NumberResult = Result<uint32_t>;

constexpr auto nothing = std::nullopt;

template <typename Getter>
TextResult readText(const Getter& get)
{
    char* text = nullptr;
    const int32_t code = get(&text);
    TextResult result{code, text ? std::optional<std::string>(text) : nothing};
    std::free(text);
    return result;
}

template <typename Getter>
NumberResult readNumber(const Getter& get)
{
    constexpr uint32_t unwritten = 0xabababab;
    uint32_t number = unwritten;
    const int32_t code = get(&number);
    return {code, number == unwritten ? nothing : std::optional(number)};
}

/** The text of the bus error that a call raises. */
template <typename Call>
std::string busErrorOf(const Call& call)
{
    try
    {
        call();
    }
    catch (const sdbusplus::exception::SdBusError& error)
    {
        return error.what();
    }
    return "none";
}

} // namespace morvath::tests
