// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <systemd/sd-bus.h>
#include <systemd/sd-event.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace morvath::sim
{

template <auto Release>
struct Releaser
{
    void operator()(auto* resource) const noexcept { Release(resource); }
};

using Bus = std::unique_ptr<sd_bus, Releaser<sd_bus_flush_close_unref>>;
using Message = std::unique_ptr<sd_bus_message, Releaser<sd_bus_message_unref>>;
using Slot = std::unique_ptr<sd_bus_slot, Releaser<sd_bus_slot_unref>>;
using EventLoop = std::unique_ptr<sd_event, Releaser<sd_event_unref>>;
using Timer =
    std::unique_ptr<sd_event_source, Releaser<sd_event_source_disable_unref>>;

/** An answer in the form of a D-Bus error. */
class BusError : public std::runtime_error
{
  public:
    BusError(std::string name, const std::string& message) :
        std::runtime_error(message),
        errorName(std::move(name))
    {}

    const std::string& name() const noexcept { return errorName; }

  private:
    std::string errorName;
};

/** Does what sd-bus calls back for; an exception becomes the error. */
template <typename Action>
int answering(sd_bus_error* error, const Action& action) noexcept
{
    try
    {
        return action();
    }
    catch (const BusError& refusal)
    {
        return sd_bus_error_set(error, refusal.name().c_str(), refusal.what());
    }
    catch (const std::exception& failure)
    {
        return sd_bus_error_set(error, SD_BUS_ERROR_FAILED, failure.what());
    }
}

/**
 * Throws std::system_error with the name of the operation when the result of
 * a libsystemd call is negative, otherwise returns the result.
 */
inline int check(int result, const char* operation = "sd-bus")
{
    if (result < 0)
    {
        throw std::system_error(-result, std::generic_category(), operation);
    }
    return result;
}

/** A connection; empty address: the bus of the environment. */
inline Bus openBus(const std::string& address)
{
    constexpr auto connecting = "connecting to the bus";
    sd_bus* bus = nullptr;
    if (address.empty())
    {
        check(sd_bus_open(&bus), connecting);
        return Bus(bus);
    }
    check(sd_bus_new(&bus));
    Bus owned(bus);
    check(sd_bus_set_address(bus, address.c_str()), connecting);
    check(sd_bus_set_bus_client(bus, true));
    check(sd_bus_start(bus), connecting);
    return owned;
}

inline Message newReply(sd_bus_message* call)
{
    sd_bus_message* reply = nullptr;
    check(sd_bus_message_new_method_return(call, &reply));
    return Message(reply);
}

} // namespace morvath::sim
