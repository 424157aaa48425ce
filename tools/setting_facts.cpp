// SPDX-License-Identifier: Apache-2.0
#include "fact_kinds.hpp"
#include "facts.hpp"

#include <morvath.h>
#include <time.h>

namespace morvath::tools
{
namespace
{

constexpr Word transitions[]{
    {0, "off"},
    {1, "on"},
    {2, "reboot"},
    {3, "graceful-warm-reboot"},
    {4, "force-warm-reboot"},
};

constexpr Word methods[]{
    {0, "manual"},
    {1, "ntp"},
};

// The library takes the words themselves.
constexpr Word policies[]{
    {0, "AlwaysOn"},
    {1, "AlwaysOff"},
    {2, "LastState"},
};

constexpr Source ofSetup(const char* property)
{
    return {"xyz.openbmc_project.Smbios.MDR_V2",
            "/xyz/openbmc_project/inventory/system/chassis/motherboard/bios",
            "xyz.openbmc_project.BIOSConfig.BiosConf", property};
}

constexpr Source ofHost(const char* property)
{
    return {"xyz.openbmc_project.State.Host",
            "/xyz/openbmc_project/state/host0",
            "xyz.openbmc_project.State.Host", property};
}

/** To the library no text at all is a policy too; here it is a slip. */
int32_t writePolicy(const std::string& value)
{
    return value.empty() ? rejected : setPowerRestorePolicy(value.c_str());
}

/** The library gives the zone as the process has it, which has not asked. */
Answer zone()
{
    tzset();
    return readNumber(getTimeZone);
}

constexpr Fact all[]{
    {"bios-boot-type", "how the host boots, as the BIOS's own code",
     ofSetup("BootType"), number<getBiosBootType>},
    {"bios-boot-order-0", "first boot device, as the BIOS's own code",
     ofSetup("BootTypeOrder0"), number<getBiosBootOrder0>},
    {"bios-boot-order-1", "second boot device, as the BIOS's own code",
     ofSetup("BootTypeOrder1"), number<getBiosBootOrder1>},
    {"bios-boot-order-2", "third boot device, as the BIOS's own code",
     ofSetup("BootTypeOrder2"), number<getBiosBootOrder2>},
    {"bios-boot-order-3", "fourth boot device, as the BIOS's own code",
     ofSetup("BootTypeOrder3"), number<getBiosBootOrder3>},
    {"bios-ipv4-pxe", "whether the host may boot over IPv4",
     ofSetup("IPv4PXESupport"), flag<getBiosIPV4Support>},
    {"bios-ipv6-pxe", "whether the host may boot over IPv6",
     ofSetup("IPv6PXESupport"), flag<getBiosIPV6Support>},
    {"bios-hyper-threading", "whether a core runs several threads",
     ofSetup("ProcessorHyperThreading"), flag<getBiosHyperThreading>},
    {"power-state", "power state of the host", ofHost("CurrentHostState"),
     text<getSystemPowerState>},
    {"power-control", "last requested transition of the host",
     ofHost("RequestedHostTransition"), word<getSystemPowerCtl, transitions>,
     toWord<setSystemPowerCtl, transitions>, "0 to 4", transitions},
    {"power-restore-policy",
     "what the host does when power returns",
     {"xyz.openbmc_project.Settings",
      "/xyz/openbmc_project/control/host0/power_restore_policy",
      "xyz.openbmc_project.Control.Power.RestorePolicy", "PowerRestorePolicy"},
     text<getPowerRestorePolicy>,
     writePolicy,
     {},
     policies},
    {"time",
     "clock, in seconds since 1970",
     {"xyz.openbmc_project.Time.Manager", "/xyz/openbmc_project/time/bmc",
      "xyz.openbmc_project.Time.EpochTime", "Elapsed"},
     number<getTimeStamp>,
     toNumber<setTimeStamp>,
     "a whole number of seconds, from -2147483648 to 2147483647"},
    {"time-zone", "time zone, in seconds west of UTC", {}, zone},
    {"time-sync",
     "how the clock is set",
     {"xyz.openbmc_project.Settings", "/xyz/openbmc_project/time/sync_method",
      "xyz.openbmc_project.Time.Synchronization", "TimeSyncMethod"},
     word<getNtpServerStatus, methods>,
     toWord<setNtpServerStatus, methods>,
     "0 to 1",
     methods},
    {"ntp-servers",
     "NTP servers of the first network interface",
     {"xyz.openbmc_project.Network", "",
      "xyz.openbmc_project.Network.EthernetInterface", "NTPServers"},
     list<getNtpPreferServer>,
     toText<setNtpServerIP>,
     "one to three IPv4 addresses with blanks in between",
     {},
     true},
};

} // namespace

std::span<const Fact> settingFacts()
{
    return all;
}

} // namespace morvath::tools
