// SPDX-License-Identifier: Apache-2.0
#include "sim/service.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <string>

namespace morvath::sim
{
namespace
{

constexpr auto invalidEnumeration =
    "xyz.openbmc_project.sdbusplus.Error.InvalidEnumString";

constexpr auto hostState = "xyz.openbmc_project.State.Host.HostState.";
constexpr auto transition = "xyz.openbmc_project.State.Host.Transition.";

constexpr Place syncMethod{"/xyz/openbmc_project/time/sync_method",
                           "xyz.openbmc_project.Time.Synchronization",
                           "TimeSyncMethod"};
constexpr auto ntpMethod =
    "xyz.openbmc_project.Time.Synchronization.Method.NTP";

/** A Set call of the right type for a property that may be written. */
struct Setting
{
    Services& services;
    Service& service;
    Place place;
    Property& property;
    const Json& value;

    /** At the service that was called. */
    void keep() const
    {
        service.change(place.path, place.interface, property, value);
    }

    /** Another property of the same interface. */
    Place beside(std::string_view name) const
    {
        return {place.path, place.interface, name};
    }
};

void requestTransition(const Setting& setting)
{
    const auto current = setting.beside("CurrentHostState");
    const auto become = [&](const char* state) {
        setting.services.change(current, hostState + std::string(state));
    };
    const auto isFor = [&](const char* name) {
        return setting.value == transition + std::string(name);
    };
    // The request stays, whatever becomes of it.
    setting.services.change(setting.place, setting.value);
    if (isFor("On"))
    {
        become("Running");
    }
    // A host that is off is not started by a reboot, and a warm reboot does
    // not show in the state.
    else if (setting.services.textAt(current) !=
                 hostState + std::string("Off") &&
             (isFor("Off") || isFor("Reboot")))
    {
        become("Off");
        if (isFor("Reboot"))
        {
            become("Running");
        }
    }
}

void setClock(const Setting& setting)
{
    if (setting.services.textAt(syncMethod) == ntpMethod)
    {
        throw BusError("xyz.openbmc_project.Time.Error.Failed",
                       "The clock is kept by NTP.");
    }
    setting.keep();
}

/** The service restarts instead, so its callers see success. */
void ignore(const Setting&) {}

void useServers(const Setting& setting)
{
    setting.keep();
    setting.services.change(setting.beside("NTPServers"), setting.value);
}

struct Behaviour
{
    std::string_view name;
    std::string_view interface;
    std::string_view property;
    void (*apply)(const Setting& setting);
};

constexpr std::array behaviours{
    Behaviour{"host-power", "xyz.openbmc_project.State.Host",
              "RequestedHostTransition", requestTransition},
    Behaviour{"ntp-keeps-clock", "xyz.openbmc_project.Time.EpochTime",
              "Elapsed", setClock},
    Behaviour{"ntp-servers-in-use",
              "xyz.openbmc_project.Network.EthernetInterface", "NTPServers",
              ignore},
    Behaviour{"ntp-servers-in-use",
              "xyz.openbmc_project.Network.EthernetInterface",
              "StaticNTPServers", useServers},
};

} // namespace

bool isBehaviour(std::string_view name)
{
    return std::ranges::find(behaviours, name, &Behaviour::name) !=
           behaviours.end();
}

// The one place for what a machine does when it is told to change: refuse, or
// change more than was said.
void Service::set(std::string_view path, std::string_view interface,
                  Property& property, const Json& value)
{
    const auto& texts = property.enumeration;
    if (!texts.empty() &&
        std::ranges::find(texts, asText(value)) == texts.end())
    {
        throw BusError(invalidEnumeration,
                       "The text is no member of the enumeration.");
    }
    const Setting setting{
        services, *this, {path, interface, property.name}, property, value};
    for (const auto& one : behaviours)
    {
        if (one.interface == interface && one.property == property.name &&
            services.behaviours.contains(std::string(one.name)))
        {
            return one.apply(setting);
        }
    }
    setting.keep();
}

} // namespace morvath::sim
