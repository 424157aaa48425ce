// SPDX-License-Identifier: Apache-2.0
#include "sim/call_log.hpp"

#include <nlohmann/json.hpp>

#include <array>
#include <cstdio>
#include <ctime>
#include <system_error>

namespace morvath::sim
{
namespace
{

std::string textOf(const char* text) { return text ? text : ""; }

Json argumentsOf(sd_bus_message* message)
{
    Json arguments;
    try
    {
        arguments = readJsonList(message);
    }
    catch (const std::system_error&)
    {}
    check(sd_bus_message_rewind(message, true), "sd_bus_message_rewind");
    return arguments;
}

/** In UTC, to the microsecond. */
std::string textOf(std::chrono::system_clock::time_point time)
{
    using namespace std::chrono;
    const auto seconds = system_clock::to_time_t(time);
    const auto rest = duration_cast<microseconds>(time.time_since_epoch()) % 1s;
    std::tm fields{};
    gmtime_r(&seconds, &fields);
    std::array<char, 64> text{};
    const auto length =
        std::strftime(text.data(), text.size(), "%FT%T", &fields);
    std::snprintf(text.data() + length, text.size() - length, ".%06dZ",
                  static_cast<int>(rest.count()));
    return text.data();
}

} // namespace

Call callOf(sd_bus_message* message)
{
    return {.time = std::chrono::system_clock::now(),
            .caller = textOf(sd_bus_message_get_sender(message)),
            .service = textOf(sd_bus_message_get_destination(message)),
            .path = textOf(sd_bus_message_get_path(message)),
            .interface = textOf(sd_bus_message_get_interface(message)),
            .member = textOf(sd_bus_message_get_member(message)),
            .arguments = std::make_shared<const Json>(argumentsOf(message)),
            .outcome = {},
            .fault = {}};
}

std::string toLine(const Call& call)
{
    Json line{{"time", textOf(call.time)},    {"caller", call.caller},
              {"service", call.service},      {"path", call.path},
              {"interface", call.interface},  {"member", call.member},
              {"arguments", *call.arguments}, {"outcome", call.outcome}};
    if (!call.fault.empty())
    {
        line["fault"] = call.fault;
    }
    return line.dump();
}

} // namespace morvath::sim
