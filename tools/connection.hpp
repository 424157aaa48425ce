// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "cli/program.hpp"

#include <dlfcn.h>

#include <string>

namespace morvath::tools
{

using cli::Seconds;

/** The function of that name which the program's own stands before. */
template <typename Function>
Function* original(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::string orNone(const char* text);

/** "0.5 s". */
std::string textOf(Seconds seconds);

} // namespace morvath::tools
