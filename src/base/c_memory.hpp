// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <span>
#include <string_view>
#include <utility>

namespace morvath
{

struct Free
{
    void operator()(void* memory) const noexcept { std::free(memory); }
};

/** What callers get and release with free(), owned until it is released. */
using CText = std::unique_ptr<char, Free>;

/** A copy in C memory; std::bad_alloc when there is none left. */
CText newText(std::string_view text);

/** Zeroed memory for so many elements; std::bad_alloc when there is none. */
void* allocateZeroed(std::size_t count, std::size_t size);

/** Releases an array of texts and the texts that are set. */
void releaseTexts(char** texts, std::size_t size) noexcept;

/** An array of texts in C memory, each null until it is set. */
class TextArray
{
  public:
    explicit TextArray(std::size_t size) :
        texts(static_cast<char**>(allocateZeroed(size, sizeof(char*)))),
        count(size)
    {}
    TextArray(const TextArray&) = delete;
    TextArray& operator=(const TextArray&) = delete;
    ~TextArray() { releaseTexts(texts, count); }

    const char* operator[](std::size_t index) const { return texts[index]; }

    void set(std::size_t index, CText text)
    {
        std::free(std::exchange(texts[index], text.release()));
    }

    /** Hands the array and its texts over to the caller. */
    char** release() { return std::exchange(texts, nullptr); }

  private:
    char** texts;
    std::size_t count;
};

/** Copies in an array in C memory. */
char** newTexts(std::span<const char* const> texts);

} // namespace morvath
