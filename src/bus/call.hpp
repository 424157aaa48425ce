// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "base/codes.hpp"

#include <sdbusplus/exception.hpp>
#include <sdbusplus/message.hpp>

/*
 * How failures travel, for the whole library.
 *
 * A request that cannot even be created (no connection, an illegal name or
 * path) leaves every export as SdBusError. What fails after that, the call or
 * the reading of its reply, becomes -1 in the exports that use statusOf();
 * the table engine does not, so there it leaves as SdBusError too. Nothing
 * else is caught: a property of another type (std::bad_variant_access), a text
 * that is null or does not convert, no memory.
 */
namespace morvath
{

/** A method call in the making. None of the texts may be null. */
class Request
{
  public:
    Request(const char* service, const char* path, const char* interface,
            const char* member);

    // What sd-bus says of an argument is not looked at: a request that could
    // not be filled is refused when it is called.

    Request& append(char type, const void* value);
    Request& append(const char* text) { return append('s', text); }
    /** Up to the null that ends the list. */
    Request& append(const char* const* texts);
    Request& open(char type, const char* contents);
    Request& close();

    /** The reply; SdBusError when the call fails. */
    sdbusplus::message_t call();

  private:
    sdbusplus::message_t message;
};

/** Runs one exchange with the bus, from the call to the end of its reply. */
template <typename Exchange>
int32_t statusOf(const Exchange& exchange)
{
    try
    {
        exchange();
    }
    catch (const sdbusplus::exception::exception&)
    {
        return busFailure;
    }
    return success;
}

} // namespace morvath
