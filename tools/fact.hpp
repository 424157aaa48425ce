// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "presence.hpp"
#include "value.hpp"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace morvath::tools
{

/** The library's code for a value that it refuses unsent. */
constexpr int32_t rejected = -3;

/** What the library answered; null when it gave no value. */
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
    /** For what does not come from the bus: what writing it needs, if any. */
    Source source;
    Answer (*read)();
    /** Null when it cannot be written; otherwise the library's code. */
    int32_t (*write)(const std::string& value) = nullptr;
    /** What can be written, besides the words. */
    std::string_view values{};
    std::span<const Word> words{};
    /** Whether writing can seem to work and is checked by reading. */
    bool isReadBack = false;
};

// How the kinds of facts are read; an empty text is no value, and a list is a
// line with blanks in between.
Answer readText(int32_t (*get)(char**));
Answer readList(int32_t (*get)(char**));
Answer readFlag(int32_t (*get)(uint32_t*));
Answer readWord(int32_t (*get)(uint32_t*), std::span<const Word> words);

template <typename Number>
Answer readNumber(int32_t (*get)(Number*))
{
    Number number = 0;
    const int32_t code = get(&number);
    return {code, number};
}

// How they are written: the library's code, or -3 for a value of another kind.
int32_t writeWord(const std::string& value, int32_t (*set)(uint32_t),
                  std::span<const Word> words);
int32_t writeNumber(const std::string& value, int32_t (*set)(int32_t));

/**
 * The value, null when the platform does not have it. Raises std::exception
 * when it has but could not be read.
 */
Value readFact(const Fact& fact);

/** What can be written, for people. */
std::string acceptedBy(const Fact& fact);

/** Raises std::invalid_argument for a value that is refused unsent. */
void writeFact(const Fact& fact, const std::string& value);

} // namespace morvath::tools
