// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "tables/table.hpp"

#include <arpa/inet.h>

#include <array>
#include <string>

using namespace morvath;

namespace
{

constexpr auto networkRoot = "/xyz/openbmc_project/network";
constexpr auto addressInterface = "xyz.openbmc_project.Network.IP";
constexpr std::string_view staticOrigin =
    "xyz.openbmc_project.Network.IP.AddressOrigin.Static";
constexpr auto noAddress = "-";

constexpr int32_t originStatic = 1;
constexpr int32_t originOther = 2;
constexpr int32_t originNone = 3;

constexpr uint32_t maskBits = 32;

void storeOrigin(int32_t& field, CText&& cell)
{
    field = required(cell.get()) == staticOrigin ? originStatic : originOther;
}

uint32_t maskOf(int32_t prefixLength)
{
    // Eight bits of the difference count, so that a prefix beyond an IPv4
    // address, as IPv6 has them, leaves no bit of the mask.
    const auto shift =
        static_cast<uint8_t>(maskBits - static_cast<uint32_t>(prefixLength));
    return shift < maskBits ? ~uint32_t{0} << shift : 0;
}

void storeNetmask(char*& field, CText&& cell)
{
    int32_t prefixLength = 0;
    store(prefixLength, std::move(cell));
    const in_addr mask{htonl(maskOf(prefixLength))};
    std::array<char, INET_ADDRSTRLEN> text;
    inet_ntop(AF_INET, &mask, text.data(), text.size());
    storeText(field, text.data());
}

constexpr std::array addressColumns{
    column<&BmcNetworkInfoEntry::ipAddress>("Address"),
    column<&BmcNetworkInfoEntry::addressOrigin, storeOrigin>("Origin"),
    column<&BmcNetworkInfoEntry::netmask, storeNetmask>("PrefixLength"),
};

void addAddress(BmcNetworkInfoEntry& entry, Row)
{
    const auto root = networkRoot + ('/' + std::string(required(entry.ifName)));
    const Table addresses{root.c_str(), addressInterface, addressColumns};
    Rows rows;
    // An interface whose addresses cannot be listed counts as one without.
    if (readRows(addresses, rows) != success || rows.size() == 0)
    {
        storeText(entry.ipAddress, noAddress);
        entry.addressOrigin = originNone;
        storeText(entry.netmask, noAddress);
        return;
    }
    // The first one counts, whatever its family.
    fillRecord(addresses, rows[0], &entry);
}

constexpr std::array interfaceColumns{
    column<&BmcNetworkInfoEntry::ifName>("InterfaceName"),
    column<&BmcNetworkInfoEntry::macAddress>("MACAddress"),
    column<&BmcNetworkInfoEntry::nicEnabled>("NICEnabled"),
    column<&BmcNetworkInfoEntry::defaultGateway>("DefaultGateway"),
};

constexpr Table interfaces{networkRoot,
                           "xyz.openbmc_project.Network.EthernetInterface",
                           interfaceColumns, finishWith<addAddress>};

} // namespace

int32_t getNetworkTableInfo(BmcNetworkInfoEntry** outArray, int32_t* outCount)
{
    return getTable(interfaces, outArray, outCount);
}

void freeBmcNetworkInfoEntry(BmcNetworkInfoEntry* one)
{
    releaseFields(
        one, &BmcNetworkInfoEntry::ifName, &BmcNetworkInfoEntry::macAddress,
        &BmcNetworkInfoEntry::ipAddress, &BmcNetworkInfoEntry::defaultGateway,
        &BmcNetworkInfoEntry::netmask);
}
