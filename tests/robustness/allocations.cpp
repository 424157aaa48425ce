// SPDX-License-Identifier: Apache-2.0
#include "robustness/allocations.hpp"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

// What stands behind malloc() once the functions here are in its place. Under
// a sanitizer they hand on to it, so that it still sees every block.
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define UNDERLYING(name) __interceptor_##name
#endif
#endif
#if !defined(UNDERLYING) && defined(__SANITIZE_ADDRESS__)
#define UNDERLYING(name) __interceptor_##name
#endif
#ifndef UNDERLYING
#define UNDERLYING(name) __libc_##name
#endif

extern "C"
{
void* UNDERLYING(malloc)(std::size_t size);
void* UNDERLYING(calloc)(std::size_t count, std::size_t size);
void* UNDERLYING(realloc)(void* memory, std::size_t size);
}

namespace
{

// A sanitizer allocates before it can look after memory.
[[gnu::no_sanitize_address]] bool failsNow()
{
    auto& counted = morvath::tests::allocations;
    if (!counted.areCounted || ++counted.seen < counted.firstToFail ||
        counted.seen - counted.firstToFail >= counted.toFail)
    {
        return false;
    }
    errno = ENOMEM;
    return true;
}

} // namespace

extern "C"
{

void* malloc(std::size_t size)
{
    return failsNow() ? nullptr : UNDERLYING(malloc)(size);
}

void* calloc(std::size_t count, std::size_t size)
{
    return failsNow() ? nullptr : UNDERLYING(calloc)(count, size);
}

void* realloc(void* memory, std::size_t size)
{
    return failsNow() ? nullptr : UNDERLYING(realloc)(memory, size);
}

} // extern "C"

// A sanitizer has operators of its own, which do not come by malloc().
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return std::malloc(size == 0 ? 1 : size);
}

void* operator new(std::size_t size)
{
    if (void* memory = operator new(size, std::nothrow))
    {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }

void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
