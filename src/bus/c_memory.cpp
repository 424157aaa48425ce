// SPDX-License-Identifier: Apache-2.0
#include "bus/c_memory.hpp"

#include <cstring>
#include <new>

namespace morvath
{

CText copyText(const char* text)
{
    CText copy(strdup(text));
    if (!copy)
    {
        throw std::bad_alloc();
    }
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

TextArray::TextArray(std::size_t size) :
    texts(static_cast<char**>(allocateZeroed(size, sizeof(char*)))),
    count(size)
{}

void TextArray::set(std::size_t index, CText text)
{
    char*& element = texts[index];
    std::free(element);
    element = text.release();
}

} // namespace morvath
