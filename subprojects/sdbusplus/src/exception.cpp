// SPDX-License-Identifier: Apache-2.0
#include <sdbusplus/exception.hpp>

#include <new>
#include <utility>

namespace sdbusplus::exception
{

SdBusError::SdBusError(int errnum, const char* prefix)
{
    sd_bus_error_set_errno(&error, errnum);
    compose(prefix);
}

SdBusError::SdBusError(sd_bus_error* taken, const char* prefix)
{
    sd_bus_error_move(&error, taken);
    compose(prefix);
}

SdBusError::SdBusError(SdBusError&& other) noexcept :
    internal_exception(other),
    text(std::move(other.text))
{
    sd_bus_error_move(&error, &other.error);
}

SdBusError& SdBusError::operator=(SdBusError&& other) noexcept
{
    if (this != &other)
    {
        sd_bus_error_free(&error);
        sd_bus_error_move(&error, &other.error);
        text = std::move(other.text);
    }
    return *this;
}

SdBusError::~SdBusError() { sd_bus_error_free(&error); }

const char* SdBusError::name() const noexcept { return error.name; }

const char* SdBusError::description() const noexcept { return error.message; }

const char* SdBusError::what() const noexcept { return text.c_str(); }

int SdBusError::get_errno() const noexcept
{
    return sd_bus_error_get_errno(&error);
}

void SdBusError::compose(const char* prefix)
{
    // A constructor that throws gets no destructor call.
    try
    {
        text = prefix;
        for (const char* part : {error.name, error.message})
        {
            if (part)
            {
                text.append(": ").append(part);
            }
        }
    }
    catch (const std::bad_alloc&)
    {
        sd_bus_error_free(&error);
        throw;
    }
}

} // namespace sdbusplus::exception
