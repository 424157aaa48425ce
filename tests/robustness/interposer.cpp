// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"

#include <cstdlib>

// A program that has functions of the names of exports which the library calls
// itself: they never stand in for the library's own.

int32_t getCommonSensorTableInfo(BmcSensorEntry**, int32_t*, const char*,
                                 const char*)
{
    std::abort();
}

int32_t setDbusPropertyBool(const char*, const char*, const char*, const char*,
                            uint8_t)
{
    std::abort();
}

/** Without a platform, both fail after the library called itself. */
int main()
{
    BmcSensorEntry* sensors = nullptr;
    int32_t count = 0;
    const bool fail = getTempTableInfo(&sensors, &count) == -1 &&
                      setLldpEnalbed("nic0", "port0", 1) == -1;
    return fail ? EXIT_SUCCESS : EXIT_FAILURE;
}
