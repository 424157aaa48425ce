#include <systemd/sd-bus.h>

#include <stdexcept>

// The same as connect.c in the language that most of the platform is written
// in: its runtime is loaded, too.
int main()
{
    sd_bus* bus = nullptr;
    if (sd_bus_default(&bus) < 0)
    {
        throw std::runtime_error("no bus");
    }
    sd_bus_flush_close_unref(bus);
}
