// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sdbusplus/exception.hpp>
#include <sdbusplus/message.hpp>
#include <systemd/sd-bus.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>

namespace sdbusplus
{

using SdBusDuration = std::chrono::duration<uint64_t, std::micro>;

namespace bus
{
namespace details
{

struct release
{
    bool closes = false;

    void operator()(sd_bus* bus) const
    {
        closes ? sd_bus_flush_close_unref(bus) : sd_bus_unref(bus);
    }
};

} // namespace details

/** A bus connection; the one reference that it was given. */
class bus
{
  public:
    /** Takes the reference over and asks for the unique name at once. */
    bus(sd_bus* connection, std::false_type);

    /** Whether the destructor also flushes and closes the connection. */
    void set_should_close(bool closes)
    {
        connection.get_deleter().closes = closes;
    }

    std::string get_unique_name();

    message_t new_method_call(const char* service, const char* path,
                              const char* interface, const char* member);

    /** Without a time-out the connection's own holds. */
    message_t call(message_t& request,
                   std::optional<SdBusDuration> timeout = std::nullopt);

  private:
    std::unique_ptr<sd_bus, details::release> connection;
};

} // namespace bus

using bus_t = bus::bus;

} // namespace sdbusplus
