// SPDX-License-Identifier: Apache-2.0
#include "connection.hpp"

#include <morvath.h>
#include <systemd/sd-bus.h>

#include <memory>
#include <system_error>

namespace morvath::tools
{
namespace
{

struct Unref
{
    void operator()(sd_bus* bus) const
    {
        sd_bus_unref(bus);
    }
};

/** On the thread that loaded the library this is the library's own. */
std::unique_ptr<sd_bus, Unref> openBus()
{
    sd_bus* bus = nullptr;
    const int result = sd_bus_default(&bus);
    if (result < 0)
    {
        throw std::system_error(-result, std::generic_category(),
                                "cannot connect to the bus");
    }
    return std::unique_ptr<sd_bus, Unref>(bus);
}

} // namespace

void useBus(std::optional<Timeout> timeout)
{
    const auto bus = openBus();
    if (timeout)
    {
        using Microseconds = std::chrono::duration<uint64_t, std::micro>;
        const auto limit = std::chrono::duration_cast<Microseconds>(*timeout);
        sd_bus_set_method_call_timeout(bus.get(), limit.count());
    }
}

bool platformAnswers()
{
    // There is always a root, and no need of anything below it.
    SubTree nothing;
    return getSubTree("/", "", &nothing) == 0;
}

} // namespace morvath::tools
