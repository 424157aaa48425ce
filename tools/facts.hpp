// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "table.hpp"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace morvath::tools
{

/** A single value of the platform. */
struct Fact
{
    enum class Kind
    {
        /** A text or a number; one with words is shown as the word. */
        plain,
        flag,
        /** Seconds since 1970. */
        time,
        /** Texts with blanks between; whether they are used is checked. */
        list,
    };

    /** Published, never changed. */
    std::string_view name;
    std::string_view summary;
    std::variant<int32_t (*)(char**), int32_t (*)(uint32_t*),
                 int32_t (*)(int32_t*)>
        get;
    Kind kind = Kind::plain;
    std::variant<std::monostate, int32_t (*)(const char*), int32_t (*)(int32_t),
                 int32_t (*)(uint32_t)>
        set{};
    /** What can be written besides the words, for people. */
    std::string_view values{};
    /** Words in place of texts, or of the numbers from 0 on. */
    std::span<const std::string_view> words{};

    bool isWritable() const { return set.index() > 0; }
};

/** A fact's value, or what went wrong. */
struct FactReading
{
    const Fact* fact;
    /** None when the platform does not have it. */
    Value value;
    std::optional<std::string> failure{};
};

/** All facts, in the order in which they are listed. */
std::span<const Fact> facts();

/** The fact of that name, or null. */
const Fact* findFact(std::string_view name);

/** Raises std::exception for what the platform has but could not be read. */
Value readFact(const Fact& fact);
FactReading read(const Fact& fact);

/** The value as people read it. */
std::string shownText(const Fact& fact, const Value& value);

/** The texts of a line with blanks between. */
std::vector<std::string> partsOf(const std::string& line);

} // namespace morvath::tools
