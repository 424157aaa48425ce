// SPDX-License-Identifier: Apache-2.0
// For programs in plain C, which an exception would end: every failure is a
// code here. C files call this function; the C++ compiler links them.
#include <morvath.h>

extern "C" int32_t readPowerSupplies(PsuInfoEntry** outArray, int32_t* outCount)
{
    try
    {
        return getPsuTableInfo(outArray, outCount);
    }
    catch (...)
    {
        return -1;
    }
}
