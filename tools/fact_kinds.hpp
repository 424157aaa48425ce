// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "fact.hpp"

/*
 * The functions of the library as the two functions of a fact, by kind.
 */
namespace morvath::tools
{

template <int32_t (*Get)(char**)>
Answer text()
{
    return readText(Get);
}

template <int32_t (*Get)(char**)>
Answer list()
{
    return readList(Get);
}

template <auto Get>
Answer number()
{
    return readNumber(Get);
}

template <int32_t (*Get)(uint32_t*)>
Answer flag()
{
    return readFlag(Get);
}

template <int32_t (*Get)(uint32_t*), const auto& Words>
Answer word()
{
    return readWord(Get, Words);
}

template <int32_t (*Set)(const char*)>
int32_t toText(const std::string& value)
{
    return Set(value.c_str());
}

template <int32_t (*Set)(int32_t)>
int32_t toNumber(const std::string& value)
{
    return writeNumber(value, Set);
}

template <auto Set, const auto& Words>
int32_t toWord(const std::string& value)
{
    return writeWord(
        value, [](uint32_t code) { return Set(code); }, Words);
}

} // namespace morvath::tools
