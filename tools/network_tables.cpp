// SPDX-License-Identifier: Apache-2.0
#include "record_table.hpp"

#include <morvath.h>

namespace morvath::tools
{
namespace
{

Value originInWords(int32_t origin)
{
    switch (origin)
    {
        case 1: return "static";
        case 2: return "other";
        default: return "none";
    }
}

Table bmcNetwork()
{
    using Entry = BmcNetworkInfoEntry;
    return recordTable<Entry>(
        "bmc-network", "network interfaces of the management controller",
        getNetworkTableInfo,
        {
            {{"interface", "INTERFACE", Form::text, always}, &Entry::ifName},
            {{"macAddress", "MAC ADDRESS", Form::text, 4}, &Entry::macAddress},
            {{"ipAddress", "IP ADDRESS", Form::dashed}, &Entry::ipAddress},
            {{"netmask", "NETMASK", Form::dashed}, &Entry::netmask},
            {{"defaultGateway", "GATEWAY", Form::text, 5},
             &Entry::defaultGateway},
            {{"addressOrigin", "ORIGIN"}, &Entry::addressOrigin, originInWords},
            {{"enabled", "ENABLED"}, &Entry::nicEnabled, yesOrNo},
        });
}

Table networkPorts()
{
    using Entry = PortInfoEntry;
    return recordTable<Entry>(
        "network-ports", "ports of the network adapters", getNetPortTableInfo,
        {
            {{"adapter", "ADAPTER", Form::text, always}, &Entry::adapterName},
            {{"name", "NAME", Form::text, always}, &Entry::name},
            {{"macAddress", "MAC ADDRESS", Form::text, 4}, &Entry::macAddress},
            {{"rootBdf", "PCI ADDRESS", Form::text, 5}, &Entry::rootBdf},
            {{"portType", "TYPE"}, &Entry::portType},
            {{"maxSpeedGbps", "SPEED", Form::text, 1, "Gbit/s"},
             &Entry::maxSpeedGbps},
            {{"lldpEnabled", "LLDP"}, &Entry::lldpEnabled, yesOrNo},
            {{"phyLink", "LINK"}, &Entry::phyLink, yesOrNo},
            {{"dropRatio", "DROPS", Form::dashed, 3}, &Entry::dropRatio},
        });
}

} // namespace

std::vector<Table> networkTables() { return {bmcNetwork(), networkPorts()}; }

} // namespace morvath::tools
