// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "table.hpp"

#include <span>
#include <string>
#include <string_view>

namespace morvath::tools
{

/** What the library answered; no value when it gave none. */
struct Answer
{
    int32_t code;
    Value value;
};

/** A word for a code of the library. */
struct Word
{
    uint32_t code;
    std::string_view text;
};

/** A single value of the platform. */
struct Fact
{
    /** Published, never changed. */
    std::string_view name;
    std::string_view summary;
    Answer (*read)();
    /** Null when it cannot be written; otherwise the library's code. */
    int32_t (*write)(const std::string& value) = nullptr;
    /** What can be written, besides the words. */
    std::string_view values{};
    std::span<const Word> words{};
    /** Whether writing can seem to work and is checked by reading. */
    bool isReadBack = false;
    /** Whether it takes several values, which are told with blanks between. */
    bool takesSeveral = false;
    /** The value for people, if that is another text. */
    std::string (*show)(const Value& value) = nullptr;
};

/** All facts, in the order in which they are listed. */
std::span<const Fact> facts();

/** The fact of that name, or null. */
const Fact* findFact(std::string_view name);

/**
 * The value, none when the platform does not have it. Raises std::exception
 * when it has but could not be read.
 */
Value readFact(const Fact& fact);

/** What can be written, for people. */
std::string acceptedBy(const Fact& fact);

/** Raises std::invalid_argument for a value that is refused unsent. */
void writeFact(const Fact& fact, const std::string& value);

/** Raises why something was not written, unless the library's code is 0. */
void requireWritten(int32_t code);

} // namespace morvath::tools
