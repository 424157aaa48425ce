// SPDX-License-Identifier: Apache-2.0
#include "catalogue.hpp"
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
        case 1:
            return "static";
        case 2:
            return "other";
        default:
            return "none";
    }
}

Table bmcNetwork()
{
    using Entry = BmcNetworkInfoEntry;
    return recordTable<Entry>(
        "bmc-network", "network interfaces of the management controller",
        {getNetworkTableInfo, freeBmcNetworkInfoEntry},
        {
            {{"interface", "INTERFACE"}, &Entry::ifName},
            {{"macAddress", "MAC ADDRESS"}, &Entry::macAddress},
            {{"ipAddress", "IP ADDRESS", Form::dashed}, &Entry::ipAddress},
            {{"netmask", "NETMASK", Form::dashed}, &Entry::netmask},
            {{"defaultGateway", "GATEWAY"}, &Entry::defaultGateway},
            {{"addressOrigin", "ORIGIN"}, &Entry::addressOrigin, originInWords},
            {{"enabled", "ENABLED"}, &Entry::nicEnabled, yesOrNo},
        });
}

Table networkPorts()
{
    using Entry = PortInfoEntry;
    return recordTable<Entry>(
        "network-ports", "ports of the network adapters",
        {getNetPortTableInfo, free_port_entry_content},
        {
            {{"adapter", "ADAPTER"}, &Entry::adapterName},
            {{"name", "NAME"}, &Entry::name},
            {{"macAddress", "MAC ADDRESS"}, &Entry::macAddress},
            {{"rootBdf", "PCI ADDRESS"}, &Entry::rootBdf},
            {{"portType", "TYPE"}, &Entry::portType},
            {{"maxSpeedGbps", "SPEED [Gbit/s]"}, &Entry::maxSpeedGbps},
            {{"lldpEnabled", "LLDP"}, &Entry::lldpEnabled, yesOrNo},
            {{"phyLink", "LINK"}, &Entry::phyLink, yesOrNo},
            {{"dropRatio", "DROPS", Form::dashed}, &Entry::dropRatio},
        });
}

} // namespace

std::vector<Table> networkTables()
{
    return {bmcNetwork(), networkPorts()};
}

} // namespace morvath::tools
