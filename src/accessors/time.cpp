// SPDX-License-Identifier: Apache-2.0
#include "base/texts.hpp"
#include "bus/mapper.hpp"
#include "bus/properties.hpp"
#include "morvath.h"

#include <arpa/inet.h>
#include <time.h>

#include <array>
#include <cstring>
#include <string>

using namespace morvath;

namespace
{

constexpr Property elapsed{"xyz.openbmc_project.Time.Manager",
                           "/xyz/openbmc_project/time/bmc",
                           "xyz.openbmc_project.Time.EpochTime", "Elapsed"};

constexpr int64_t microsecondsPerSecond = 1'000'000;

constexpr Property syncMethod{
    "xyz.openbmc_project.Settings", "/xyz/openbmc_project/time/sync_method",
    "xyz.openbmc_project.Time.Synchronization", "TimeSyncMethod"};

constexpr std::string_view ntpMethod =
    "xyz.openbmc_project.Time.Synchronization.Method.NTP";
constexpr std::string_view manualMethod =
    "xyz.openbmc_project.Time.Synchronization.Method.Manual";

constexpr uint32_t manualCode = 0;
constexpr uint32_t ntpCode = 1;
constexpr uint32_t otherCode = 255;

constexpr auto networkService = "xyz.openbmc_project.Network";
constexpr auto interfaceRoot = "/xyz/openbmc_project/network";
constexpr auto ethernetInterface =
    "xyz.openbmc_project.Network.EthernetInterface";
constexpr auto serversProperty = "NTPServers";

constexpr auto blank = " ";
constexpr std::size_t mostServers = 3;

/**
 * Over the length of what is published, on purpose: any leading part of a text
 * is that method, of both texts NTP.
 */
uint32_t methodCode(std::string_view method)
{
    if (ntpMethod.starts_with(method))
    {
        return ntpCode;
    }
    return manualMethod.starts_with(method) ? manualCode : otherCode;
}

bool isIpv4Address(const char* text)
{
    in_addr address;
    return inet_pton(AF_INET, text, &address) == 1;
}

} // namespace

int32_t getTimeStamp(uint32_t* seconds)
{
    *seconds = static_cast<uint32_t>(time(nullptr));
    return success;
}

int32_t getTimeZone(int32_t* offset)
{
    // As it stands: whether the zone is read with tzset() is the caller's.
    *offset = static_cast<int32_t>(timezone);
    return success;
}

int32_t setTimeStamp(int32_t seconds)
{
    return writeNumber(elapsed,
                       static_cast<uint64_t>(seconds * microsecondsPerSecond));
}

int32_t getNtpServerStatus(uint32_t* method)
{
    CText value;
    if (const auto code = readText(syncMethod, value))
    {
        return code;
    }
    *method = value ? methodCode(value.get()) : otherCode;
    return success;
}

int32_t setNtpServerStatus(int32_t method)
{
    return writeText(
        syncMethod,
        (method == int32_t{ntpCode} ? ntpMethod : manualMethod).data());
}

int32_t setNtpServerIP(const char* servers)
{
    const auto line = newText(required(servers));
    // What is left null after the last address ends the list.
    std::array<const char*, mostServers + 1> list{};
    std::size_t count = 0;
    char* rest = nullptr;
    for (const char* server = strtok_r(line.get(), blank, &rest); server;
         server = strtok_r(nullptr, blank, &rest))
    {
        // No more than three, and no names, on purpose.
        if (count == mostServers || !isIpv4Address(server))
        {
            return rejected;
        }
        list[count++] = server;
    }
    if (count == 0)
    {
        return rejected;
    }
    return setDbusPropertyVectorStringWithoutPath(
        networkService, ethernetInterface, serversProperty, list.data());
}

int32_t getNtpPreferServer(char** servers)
{
    ObjectList interfaces;
    if (const auto code = interfaces.query(interfaceRoot, ethernetInterface))
    {
        return code;
    }
    const char* first = interfaces.firstOwnedBy(networkService);
    if (!first)
    {
        return success;
    }
    TextList list;
    if (const auto code = readTexts(
            {networkService, first, ethernetInterface, serversProperty}, list))
    {
        return code;
    }
    // A blank after each, the last one too, is what callers expect.
    std::string line;
    for (const char* server : list.texts)
    {
        line.append(server).append(blank);
    }
    if (!list.texts.empty())
    {
        *servers = newText(line).release();
    }
    return success;
}
