// SPDX-License-Identifier: Apache-2.0
#include "sim/behaviours.hpp"

#include "sim/service.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <string>

namespace morvath::sim
{
namespace
{

constexpr auto hostInterface = "xyz.openbmc_project.State.Host";
constexpr auto transitionProperty = "RequestedHostTransition";
constexpr auto transitionPrefix = "xyz.openbmc_project.State.Host.Transition.";
constexpr auto hostOff = "xyz.openbmc_project.State.Host.HostState.Off";
constexpr auto hostRunning = "xyz.openbmc_project.State.Host.HostState.Running";

constexpr auto clockInterface = "xyz.openbmc_project.Time.EpochTime";
constexpr auto clockError = "xyz.openbmc_project.Time.Error.Failed";
constexpr Place syncMethod{"/xyz/openbmc_project/time/sync_method",
                           "xyz.openbmc_project.Time.Synchronization",
                           "TimeSyncMethod"};
constexpr auto ntpMethod =
    "xyz.openbmc_project.Time.Synchronization.Method.NTP";

constexpr auto ethernetInterface =
    "xyz.openbmc_project.Network.EthernetInterface";
constexpr auto serversProperty = "NTPServers";

void keep(const Setting& setting)
{
    setting.service.change(setting.path, setting.interface, setting.property,
                           setting.value);
}

/** Another property of the same interface. */
Place besides(const Setting& setting, std::string_view property)
{
    return {setting.path, setting.interface, property};
}

void requestTransition(const Setting& setting)
{
    const auto state = besides(setting, "CurrentHostState");
    const auto change = [&](const char* text) {
        setting.services.change(state, text);
    };
    // The request stays, whatever becomes of it.
    setting.services.change(besides(setting, transitionProperty),
                            setting.value);
    const auto isFor = [&](const char* transition) {
        return setting.value == std::string(transitionPrefix) + transition;
    };
    if (isFor("On"))
    {
        change(hostRunning);
    }
    // A host that is off is not started by a reboot, and a warm reboot does
    // not show in the state.
    else if (setting.services.textAt(state) != hostOff &&
             (isFor("Off") || isFor("Reboot")))
    {
        change(hostOff);
        if (isFor("Reboot"))
        {
            change(hostRunning);
        }
    }
}

void setClock(const Setting& setting)
{
    if (setting.services.textAt(syncMethod) == ntpMethod)
    {
        throw BusError(clockError, "The clock is kept by NTP.");
    }
    keep(setting);
}

/** The service restarts instead, so its callers see success. */
void ignore(const Setting&) {}

void useServers(const Setting& setting)
{
    keep(setting);
    setting.services.change(besides(setting, serversProperty), setting.value);
}

struct Behaviour
{
    std::string_view name;
    std::string_view interface;
    std::string_view property;
    void (*apply)(const Setting& setting);

    bool concerns(const Setting& setting) const
    {
        return interface == setting.interface &&
               property == setting.property.name &&
               setting.services.behaviours.contains(std::string(name));
    }
};

constexpr std::array behaviours{
    Behaviour{"host-power", hostInterface, transitionProperty,
              requestTransition},
    Behaviour{"ntp-keeps-clock", clockInterface, "Elapsed", setClock},
    Behaviour{"ntp-servers-in-use", ethernetInterface, serversProperty, ignore},
    Behaviour{"ntp-servers-in-use", ethernetInterface, "StaticNTPServers",
              useServers},
};

} // namespace

bool isBehaviour(std::string_view name)
{
    return std::ranges::find(behaviours, name, &Behaviour::name) !=
           behaviours.end();
}

void apply(const Setting& setting)
{
    const auto* found =
        std::ranges::find_if(behaviours, [&](const Behaviour& one) {
            return one.concerns(setting);
        });
    found == behaviours.end() ? keep(setting) : found->apply(setting);
}

} // namespace morvath::sim
