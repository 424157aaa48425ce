// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sdbusplus/message/append.hpp>
#include <sdbusplus/message/read.hpp>
#include <systemd/sd-bus.h>

#include <type_traits>
#include <utility>

namespace sdbusplus
{
namespace message
{

/** A counted reference to a message; empty when default-constructed. */
class message
{
  public:
    message() = default;
    /** Adds a reference. */
    explicit message(sd_bus_message* m);
    /** Takes the caller's reference over. */
    message(sd_bus_message* m, std::false_type) : handle(m) {}

    message(const message& other) : message(other.handle) {}
    message(message&& other) noexcept :
        handle(std::exchange(other.handle, nullptr))
    {}
    message& operator=(message other) noexcept
    {
        std::swap(handle, other.handle);
        return *this;
    }
    ~message();

    explicit operator bool() const { return handle != nullptr; }

    sd_bus_message* get() const { return handle; }

    sd_bus_message* release() { return std::exchange(handle, nullptr); }

    template <typename... Args>
    void append(const Args&... args)
    {
        (details::append(handle, args), ...);
    }

    template <typename... Args>
    void read(Args&... args)
    {
        (details::read(handle, args), ...);
    }

  private:
    sd_bus_message* handle = nullptr;
};

} // namespace message

using message_t = message::message;

} // namespace sdbusplus
