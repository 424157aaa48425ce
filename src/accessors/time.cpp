// SPDX-License-Identifier: Apache-2.0
#include "bus/properties.hpp"
#include "morvath.h"

#include <time.h>

using namespace morvath;

namespace
{

constexpr Property elapsed{"xyz.openbmc_project.Time.Manager",
                           "/xyz/openbmc_project/time/bmc",
                           "xyz.openbmc_project.Time.EpochTime", "Elapsed"};

constexpr int64_t microsecondsPerSecond = 1'000'000;

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
