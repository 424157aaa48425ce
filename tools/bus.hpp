// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "cli/program.hpp"

#include <dlfcn.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace morvath::tools
{

using cli::Seconds;
using Microseconds = std::chrono::duration<uint64_t, std::micro>;

/** Releases what a library in C handed over. */
template <auto Function>
struct Release
{
    template <typename Object>
    void operator()(Object* object) const
    {
        Function(object);
    }
};

/** The function of that name which the program's own stands before. */
template <typename Function>
Function* original(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::string orNone(const char* text);

/** "0.5 s". */
std::string textOf(Seconds seconds);

/** An object of the platform and the service that is asked for it. */
struct Object
{
    std::string path;
    std::string service;
};

/** A call of the library on the bus that failed. */
struct CallFailure
{
    Object object;
    /** Why, for people. */
    std::string reason;
    /** Whether it says that the platform does not have what was asked for. */
    bool isAbsence;
};

/** How long the library waits for each answer; absent for as long as usual. */
std::optional<Seconds>& answerLimit();

/**
 * Makes sure that there is a bus, and sets the limit. Raises
 * std::runtime_error that says what to do when there is no bus.
 */
void useBus();

/** Begins the reading of one table or fact: nothing failed yet. */
void beginReading(std::string_view what);

/**
 * The call that failed last since beginReading(). The codes of the library do
 * not tell what is missing from what failed; the bus does.
 */
const std::optional<CallFailure>& lastFailure();

/** Asks again what was silent; otherwise that costs one time-out only. */
void forgetSilences();

/** The objects that the library's first question to the mapper listed. */
std::vector<Object> listedObjects();

/** As long as it exists, that question is answered with one object only. */
class OnlyObject
{
  public:
    explicit OnlyObject(std::size_t place);
    OnlyObject(const OnlyObject&) = delete;
    OnlyObject& operator=(const OnlyObject&) = delete;
    ~OnlyObject();
};

/** Whether the one object, or one below it, has a property of that name. */
bool hasProperty(std::string_view name);

/**
 * Waits, and discards what the bus sends meanwhile: nobody else would, and it
 * would pile up. Starts the program anew when a bus that was lost is back: the
 * library does not connect again.
 */
void waitOnBus(Seconds pause);

} // namespace morvath::tools
