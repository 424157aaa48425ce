// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "raid/vontel.hpp"
#include "sim/vontel/record_fields.hpp"

#include <concepts>
#include <cstdint>

namespace morvath::sim
{

/** Little-endian, as wide as the area. */
std::uint64_t readNumber(Bytes area);

template <std::unsigned_integral Number>
void writeField(const JsonCursor& value, Bytes area)
{
    writeNumber(value.number<Number>(), area);
}

template <std::unsigned_integral Number>
Json readField(Bytes area)
{
    return readNumber(area);
}

/** Up to its terminator or to the end of the area. */
void writeText(const JsonCursor& value, Bytes area);
Json readText(Bytes area);

/** A text with blanks behind it. */
void writePadded(const JsonCursor& value, Bytes area);
Json readPadded(Bytes area);

/** The number of members and then an entry for each. */
void writeMembers(const JsonCursor& value, Bytes area);
Json readMembers(Bytes area);

/** Whether JSON can hold it: a text may have bytes that are none in UTF-8. */
bool isText(const Json& value);

} // namespace morvath::sim
