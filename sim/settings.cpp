// SPDX-License-Identifier: Apache-2.0
#include "sim/settings.hpp"

#include <algorithm>
#include <array>
#include <string>

namespace morvath::sim
{

constexpr std::string_view hostInterface = "xyz.openbmc_project.State.Host";
constexpr std::string_view transitionProperty = "RequestedHostTransition";
constexpr std::string_view transitionPrefix =
    "xyz.openbmc_project.State.Host.Transition.";
constexpr const char* hostOff = "xyz.openbmc_project.State.Host.HostState.Off";
constexpr const char* hostRunning =
    "xyz.openbmc_project.State.Host.HostState.Running";

constexpr std::string_view clockInterface =
    "xyz.openbmc_project.Time.EpochTime";
constexpr const char* clockError = "xyz.openbmc_project.Time.Error.Failed";
constexpr Place syncMethod{"/xyz/openbmc_project/time/sync_method",
                           "xyz.openbmc_project.Time.Synchronization",
                           "TimeSyncMethod"};
constexpr std::string_view ntpMethod =
    "xyz.openbmc_project.Time.Synchronization.Method.NTP";

constexpr std::string_view ethernetInterface =
    "xyz.openbmc_project.Network.EthernetInterface";
constexpr std::string_view serversProperty = "NTPServers";

namespace
{

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
    const Place state = besides(setting, "CurrentHostState");
    // The request stays, whatever becomes of it.
    setting.machine.change(besides(setting, transitionProperty), setting.value);
    const auto isFor = [&](std::string_view transition) {
        return setting.value ==
               Value{"s", std::string(transitionPrefix).append(transition)};
    };
    if (isFor("On"))
    {
        setting.machine.change(state, {"s", hostRunning});
    }
    // A host that is off is not started by a reboot, and a warm reboot does
    // not show in the state.
    else if (setting.machine.textAt(state) != hostOff &&
             (isFor("Off") || isFor("Reboot")))
    {
        setting.machine.change(state, {"s", hostOff});
        if (isFor("Reboot"))
        {
            setting.machine.change(state, {"s", hostRunning});
        }
    }
}

void setClock(const Setting& setting)
{
    if (setting.machine.textAt(syncMethod) == ntpMethod)
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
    setting.machine.change(besides(setting, serversProperty), setting.value);
}

struct Rule
{
    Behaviour behaviour;
    std::string_view interface;
    std::string_view property;
    void (*apply)(const Setting& setting);

    bool concerns(const Setting& setting) const
    {
        return interface == setting.interface &&
               property == setting.property.name &&
               setting.machine.has(behaviour);
    }
};

constexpr std::array rules{
    Rule{Behaviour::hostPower, hostInterface, transitionProperty,
         requestTransition},
    Rule{Behaviour::ntpKeepsClock, clockInterface, "Elapsed", setClock},
    Rule{Behaviour::ntpServersInUse, ethernetInterface, serversProperty,
         ignore},
    Rule{Behaviour::ntpServersInUse, ethernetInterface, "StaticNTPServers",
         useServers},
};

} // namespace

void apply(const Setting& setting)
{
    const auto* rule = std::ranges::find_if(
        rules, [&](const Rule& one) { return one.concerns(setting); });
    rule == rules.end() ? keep(setting) : rule->apply(setting);
}

} // namespace morvath::sim
