// SPDX-License-Identifier: Apache-2.0
#include "vontel.hpp"

#include <systemd/sd-bus.h>

#include <stdexcept>

// The same as connect.c with what the library needs for itself: the C++
// runtime and the RAID library, of which nothing is called.
int main()
{
    int (*volatile needed)() = vontel::checkRaidMgrExist;
    sd_bus* bus = nullptr;
    if (!needed || sd_bus_default(&bus) < 0)
    {
        throw std::runtime_error("no bus");
    }
    sd_bus_flush_close_unref(bus);
}
