// SPDX-License-Identifier: Apache-2.0
// Lists the temperatures that are beyond a limit. What the library raises is
// caught where the program meets it.
#include <morvath.hpp>

#include <cstdio>
#include <cstdlib>
#include <exception>

int main()
{
    try
    {
        for (const auto& sensor : morvath::read(getTempTableInfo))
        {
            if (sensor.criticalAlarmHigh || sensor.warningAlarmHigh)
            {
                std::printf("%s: %s %s\n", sensor.name, sensor.value,
                            sensor.unit);
            }
        }
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "no temperatures: %s\n", error.what());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
