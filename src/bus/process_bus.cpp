// SPDX-License-Identifier: Apache-2.0
#include "bus/process_bus.hpp"

#include <systemd/sd-bus.h>

#include <type_traits>

namespace morvath
{
namespace
{

sdbusplus::bus_t openProcessBus()
{
    // Opened here and not by the binding, which raises where no bus is: the
    // library must load all the same.
    sd_bus* connection = nullptr;
    sd_bus_default(&connection);

    // A connection that never gets a unique name is unusable: the binding
    // then raises, which deliberately ends the load.
    sdbusplus::bus_t bus(connection, std::false_type());
    bus.set_should_close(true);
    return bus;
}

} // namespace

sdbusplus::bus_t processBus = openProcessBus();

} // namespace morvath
