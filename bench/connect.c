// SPDX-License-Identifier: Apache-2.0
#include <systemd/sd-bus.h>

/* What every program on the platform does that talks to the bus. */
int main(void)
{
    sd_bus *bus = NULL;
    const int result = sd_bus_default(&bus);
    sd_bus_flush_close_unref(bus);
    return result < 0;
}
