// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sdbusplus/exception.hpp>

#include <cstdint>

/*
 * How failures travel, for the whole library.
 *
 * A request that cannot even be created (no connection, an illegal name or
 * path) leaves every export as SdBusError. What fails after that, the call or
 * the reading of its reply, becomes -1 in the exports that use statusOf();
 * the table engine does not, so there it leaves as SdBusError too. Nothing
 * else is caught: a property of another type (std::bad_variant_access), a text
 * that does not convert, no memory.
 */
namespace morvath
{

constexpr int32_t success = 0;
constexpr int32_t busFailure = -1;
constexpr int32_t outOfMemory = -2;
constexpr int32_t rejected = -3;
constexpr int32_t raidFailure = -4;

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
