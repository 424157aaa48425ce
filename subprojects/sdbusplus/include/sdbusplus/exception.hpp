// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <systemd/sd-bus.h>

#include <exception>
#include <string>

namespace sdbusplus
{
namespace exception
{

struct exception : std::exception
{
    virtual const char* name() const noexcept = 0;
    virtual const char* description() const noexcept = 0;
    virtual int get_errno() const noexcept = 0;
};

/** Raised by the binding itself, not by generated bindings. */
struct internal_exception : exception
{};

/** A failed sd-bus call: which one, and the bus's error. */
class SdBusError final : public internal_exception
{
  public:
    SdBusError(int error, const char* prefix);
    /** Takes the error over and leaves the caller's empty. */
    SdBusError(sd_bus_error* error, const char* prefix);

    SdBusError(const SdBusError&) = delete;
    SdBusError& operator=(const SdBusError&) = delete;
    SdBusError(SdBusError&& other) noexcept;
    SdBusError& operator=(SdBusError&& other) noexcept;
    ~SdBusError() override;

    const char* name() const noexcept override;
    const char* description() const noexcept override;
    const char* what() const noexcept override;
    int get_errno() const noexcept override;

  private:
    void compose(const char* prefix);

    sd_bus_error error{};
    std::string text;
};

} // namespace exception

using exception_t = exception::exception;
using internal_exception_t = exception::internal_exception;

} // namespace sdbusplus
