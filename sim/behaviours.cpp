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

constexpr Place syncMethod{"/xyz/openbmc_project/time/sync_method",
                           "xyz.openbmc_project.Time.Synchronization",
                           "TimeSyncMethod"};
constexpr auto network = "xyz.openbmc_project.Network.EthernetInterface";

/** A Set call of the right type for a property that may be written. */
struct Setting
{
    Services& services;
    Place place;
    const Json& value;
    /** Stores the value at the service that was called. */
    std::function<void()> keep;

    /** Another property of the same interface. */
    Place beside(std::string_view property) const
    {
        return {place.path, place.interface, property};
    }
};

void requestTransition(const Setting& setting)
{
    const std::string host = "xyz.openbmc_project.State.Host.";
    const auto state = setting.beside("CurrentHostState");
    const auto become = [&](const char* name) {
        setting.services.change(state, host + "HostState." + name);
    };
    const auto isFor = [&](const char* name) {
        return setting.value == host + "Transition." + name;
    };
    const auto isOff = setting.services.textAt(state) == host + "HostState.Off";
    // The request stays, whatever becomes of it.
    setting.services.change(setting.place, setting.value);
    // A host that is off is not started by a reboot, and a warm reboot does
    // not show in the state.
    if (!isOff && (isFor("Off") || isFor("Reboot")))
    {
        become("Off");
    }
    if (isFor("On") || (!isOff && isFor("Reboot")))
    {
        become("Running");
    }
}

void setClock(const Setting& setting)
{
    if (setting.services.textAt(syncMethod) ==
        "xyz.openbmc_project.Time.Synchronization.Method.NTP")
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
    Behaviour{"ntp-servers-in-use", network, "NTPServers", ignore},
    Behaviour{"ntp-servers-in-use", network, "StaticNTPServers", useServers},
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
        throw BusError("xyz.openbmc_project.sdbusplus.Error.InvalidEnumString",
                       "The text is not a member of the enumeration.");
    }
    const auto keep = [&] { change(path, interface, property, value); };
    const auto* found = std::ranges::find_if(behaviours, [&](const auto& one) {
        return one.interface == interface && one.property == property.name &&
               services.behaviours.contains(std::string(one.name));
    });
    found == behaviours.end()
        ? keep()
        : found->apply(
              {services, {path, interface, property.name}, value, keep});
}

} // namespace morvath::sim
