// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"

#include <cstdlib>

// A program that has functions of the names of exports which the library calls
// itself: they never stand in for the library's own.

int32_t getDbusTableData(const char*, const char*, const char* const*, int32_t,
                         char****, int32_t*)
{
    std::abort();
}

int32_t getDbusInterface(const char*, const char*, const char*, char***,
                         uint32_t*)
{
    std::abort();
}

int32_t getCommonSensorTableInfo(BmcSensorEntry**, int32_t*, const char*,
                                 const char*)
{
    std::abort();
}

int32_t getBMCProperty(const char*, char**) { std::abort(); }

int32_t setDbusPropertyBool(const char*, const char*, const char*, const char*,
                            uint8_t)
{
    std::abort();
}

int32_t setDbusPropertyVectorStringWithoutPath(const char*, const char*,
                                               const char*, const char**)
{
    std::abort();
}

std::string getLastStr(const std::string&) { std::abort(); }

/** Without a platform, all but one fail after the library called itself. */
int main()
{
    BmcSensorEntry* sensors = nullptr;
    PortInfoEntry* ports = nullptr;
    MemInfoEntry* modules = nullptr;
    int32_t count = 0;
    char* text = nullptr;
    uint32_t code = 0;
    const bool fail = getTempTableInfo(&sensors, &count) == -1 &&
                      getNetPortTableInfo(&ports, &count) == -1 &&
                      getMemoryTableInfo(&modules, &count) == -1 &&
                      getBMCModel(&text) == -1 &&
                      getNtpPreferServer(&text) == -1 &&
                      getSystemPowerCtl(&code) == -1 &&
                      setLldpEnalbed("nic0", "port0", 1) == -1 &&
                      setNtpServerIP("192.0.2.1") == 0;
    return fail ? EXIT_SUCCESS : EXIT_FAILURE;
}
