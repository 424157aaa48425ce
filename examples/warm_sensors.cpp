// SPDX-License-Identifier: Apache-2.0
// Lists the temperatures that are beyond a limit. What the library raises is
// caught where the program meets it.
#include <morvath.h>

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace
{

/** The records of a table, released however the scope is left. */
struct Temperatures
{
    BmcSensorEntry* entries = nullptr;
    int32_t count = 0;

    ~Temperatures()
    {
        // A table that could not be read may be counted, but not allocated.
        for (int32_t i = 0; entries && i < count; ++i)
        {
            freeBmcSensorEntry(&entries[i]);
        }
        std::free(entries);
    }
};

int32_t listWarm()
{
    Temperatures all;
    const auto code = getTempTableInfo(&all.entries, &all.count);
    for (int32_t i = 0; code == 0 && i < all.count; ++i)
    {
        const auto& sensor = all.entries[i];
        if (sensor.criticalAlarmHigh || sensor.warningAlarmHigh)
        {
            std::printf("%s: %s %s\n", sensor.name, sensor.value, sensor.unit);
        }
    }
    return code;
}

} // namespace

int main()
{
    try
    {
        return listWarm() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "no temperatures: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
