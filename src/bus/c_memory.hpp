// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <utility>

namespace morvath
{

template <auto Release>
struct Releaser
{
    void operator()(auto* memory) const noexcept
    {
        Release(memory);
    }
};

/** What callers get and release with free(), owned until it is released. */
template <typename T>
using CMemory = std::unique_ptr<T, Releaser<std::free>>;

using CText = CMemory<char>;

/** A copy in C memory; std::bad_alloc when there is none left. */
CText copyText(const char* text);

/** Releases an array of texts and the texts that are set. */
void releaseTexts(char** texts, std::size_t size) noexcept;

/** An array of texts in C memory, each null until it is set. */
class TextArray
{
  public:
    explicit TextArray(std::size_t size);
    /** Takes over what an export stored. */
    TextArray(char** texts, std::size_t size) : texts(texts), count(size) {}
    TextArray(TextArray&& other) noexcept :
        texts(std::exchange(other.texts, nullptr)),
        count(other.count)
    {}
    TextArray& operator=(TextArray&&) = delete;
    ~TextArray()
    {
        releaseTexts(texts, count);
    }

    std::size_t size() const
    {
        return count;
    }

    const char* operator[](std::size_t index) const
    {
        return texts[index];
    }

    void set(std::size_t index, CText text);

    /** Hands the array and its texts over to the caller. */
    char** release()
    {
        return std::exchange(texts, nullptr);
    }

  private:
    char** texts;
    std::size_t count;
};

/** Zeroed memory for so many elements; std::bad_alloc when there is none. */
void* allocateZeroed(std::size_t count, std::size_t size);

} // namespace morvath
