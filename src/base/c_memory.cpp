// SPDX-License-Identifier: Apache-2.0
#include "base/c_memory.hpp"

#include <new>

namespace morvath
{

CText newText(std::string_view text)
{
    CText copy(static_cast<char*>(std::malloc(text.size() + 1)));
    if (!copy)
    {
        throw std::bad_alloc();
    }
    copy.get()[text.copy(copy.get(), text.size())] = '\0';
    return copy;
}

void* allocateZeroed(std::size_t count, std::size_t size)
{
    void* memory = std::calloc(count, size);
    // For no elements a null is as good as any other pointer.
    if (!memory && count != 0)
    {
        throw std::bad_alloc();
    }
    return memory;
}

void releaseTexts(char** texts, std::size_t size) noexcept
{
    for (std::size_t index = 0; texts && index < size; ++index)
    {
        std::free(texts[index]);
    }
    std::free(texts);
}

char** newTexts(std::span<const char* const> texts)
{
    TextArray copies(texts.size());
    for (std::size_t index = 0; index < texts.size(); ++index)
    {
        copies.set(index, newText(texts[index]));
    }
    return copies.release();
}

} // namespace morvath
