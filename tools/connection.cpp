// SPDX-License-Identifier: Apache-2.0
#include "bus.hpp"

#include <systemd/sd-bus.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

/*
 * The library opens its connection before main(), with sd_bus_default(), and
 * waits there for a name as long as the bus likes. The program's own function
 * of that name stands before the one of libsystemd: it gives the library a
 * connection only once the bus has given a name, within the time-out of the
 * command line, and none where the program needs none.
 */
namespace morvath::tools
{
namespace
{

using Clock = std::chrono::steady_clock;
using Bus = std::unique_ptr<sd_bus, Release<sd_bus_unref>>;

constexpr Seconds usualLimit{25};

// There before the constructors of this program run.
constinit int connecting = 0;
constinit Seconds connectingLimit = usualLimit;

/** The command line, also before main(). */
std::vector<std::string> commandLine()
{
    std::vector<std::string> words;
    std::ifstream file("/proc/self/cmdline");
    for (std::string word; std::getline(file, word, '\0');)
    {
        words.push_back(word);
    }
    return words;
}

/** Whether the program only tells something about itself. */
bool needsNoBus(const std::vector<std::string>& words)
{
    constexpr std::array anywhere{"-h", "--help"};
    constexpr std::array first{"--version", "--complete", "--describe",
                               "facts"};
    return std::ranges::find_first_of(words, anywhere) != words.end() ||
           (words.size() > 1 &&
            std::ranges::find(first, words[1]) != first.end());
}

Seconds limitIn(const std::vector<std::string>& words)
{
    constexpr std::string_view option = "--timeout";
    double limit = 0;
    for (std::size_t i = 0; i < words.size() && !(limit > 0); ++i)
    {
        const auto& word = words[i];
        const auto given = word == option && i + 1 < words.size() ? words[i + 1]
                           : word.starts_with("--timeout=")
                               ? word.substr(option.size() + 1)
                               : std::string();
        limit = std::strtod(given.c_str(), nullptr);
    }
    return limit > 0 ? Seconds(limit) : usualLimit;
}

/**
 * Discards what the bus sends, until a time or, as the library cannot run
 * without a name, until the bus has given one.
 */
int process(sd_bus* bus, Seconds limit, bool untilNamed)
{
    const auto end = Clock::now() + limit;
    while (!untilNamed || sd_bus_is_ready(bus) == 0)
    {
        const int done = sd_bus_process(bus, nullptr);
        const Seconds left = end - Clock::now();
        if (done < 0 || left <= Seconds(0))
        {
            return done < 0 ? done : -ETIMEDOUT;
        }
        if (done == 0)
        {
            sd_bus_wait(bus,
                        std::chrono::duration_cast<Microseconds>(left).count());
        }
    }
    return std::min(sd_bus_is_ready(bus), 0);
}

int connect(int (*open)(sd_bus**), sd_bus** bus)
{
    const int opened = open(bus);
    if (opened < 0)
    {
        return opened;
    }
    const int named = process(*bus, connectingLimit, true);
    if (named < 0)
    {
        sd_bus_close(*bus);
        *bus = sd_bus_unref(*bus);
    }
    return named;
}

std::string addressOfBus()
{
    const auto starter = orNone(std::getenv("DBUS_STARTER_BUS_TYPE"));
    const auto isSystem = starter.empty() || starter == "system";
    const char* address = std::getenv(isSystem ? "DBUS_SYSTEM_BUS_ADDRESS"
                                               : "DBUS_SESSION_BUS_ADDRESS");
    return address ? address : "unix:path=/run/dbus/system_bus_socket";
}

std::string adviceFor(int error)
{
    switch (error)
    {
        case ENOENT:
        case ECONNREFUSED:
            return "start the bus, or name another one in "
                   "DBUS_SYSTEM_BUS_ADDRESS";
        case ETIMEDOUT: return "restart the bus, or wait longer with --timeout";
        case EINVAL: return "correct DBUS_SYSTEM_BUS_ADDRESS";
        default: return "run this as a user whom the bus lets in";
    }
}

std::runtime_error noBus(int error)
{
    const auto reason =
        error == ETIMEDOUT ? "no answer within " + textOf(connectingLimit)
        : error == ECONNRESET || error == ENOTCONN || error == EPIPE
            ? "it closes the connection"
            : orNone(std::strerror(error));
    return std::runtime_error("cannot connect to the bus at " + addressOfBus() +
                              ": " + reason + "; " + adviceFor(error));
}

/** A program that begins again, as it was called. */
void startAnew()
{
    auto words = commandLine();
    std::vector<char*> arguments;
    for (auto& word : words)
    {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    execv("/proc/self/exe", arguments.data());
}

} // namespace

std::string orNone(const char* text) { return text ? text : ""; }

std::string textOf(Seconds seconds)
{
    std::array<char, 32> text;
    std::snprintf(text.data(), text.size(), "%g s", seconds.count());
    return text.data();
}

std::optional<Seconds>& answerLimit()
{
    static std::optional<Seconds> limit;
    return limit;
}

void useBus()
{
    // On the thread that loaded the library this is the library's own.
    sd_bus* opened = nullptr;
    const int result = connecting < 0 ? connecting : sd_bus_default(&opened);
    if (result < 0)
    {
        throw noBus(-result);
    }
    const Bus bus(opened);
    if (sd_bus_is_open(bus.get()) <= 0)
    {
        throw noBus(ENOTCONN);
    }
    if (const auto limit = answerLimit())
    {
        sd_bus_set_method_call_timeout(
            bus.get(),
            std::chrono::duration_cast<Microseconds>(*limit).count());
    }
}

void waitOnBus(Seconds pause)
{
    const auto end = Clock::now() + pause;
    sd_bus* opened = nullptr;
    const Bus bus(connecting == 0 && sd_bus_default(&opened) >= 0 ? opened
                                                                  : nullptr);
    if (bus)
    {
        process(bus.get(), pause, false);
    }
    std::this_thread::sleep_until(end);
    forgetSilences();
    sd_bus* other = nullptr;
    if ((!bus || sd_bus_is_open(bus.get()) <= 0) &&
        connect(sd_bus_open, &other) >= 0)
    {
        sd_bus_flush_close_unref(other);
        startAnew();
    }
}

} // namespace morvath::tools

using namespace morvath::tools;

int sd_bus_default(sd_bus** bus)
{
    static auto* const next =
        original<decltype(sd_bus_default)>("sd_bus_default");
    static bool isFirst = true;
    if (!std::exchange(isFirst, false))
    {
        return next(bus);
    }
    const auto words = commandLine();
    connectingLimit = limitIn(words);
    connecting = needsNoBus(words) ? -ENOTCONN : connect(next, bus);
    return connecting;
}
