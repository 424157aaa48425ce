// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json.hpp"
#include "sim/sd_bus.hpp"

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace morvath::sim
{

/** A value of any D-Bus type, ready to be appended to a message. */
struct Value
{
    using Members = std::vector<Value>;

    /** One complete type. */
    std::string signature;

    /**
     * A boolean is held as int32_t, which is how sd-bus wants it. Members
     * are the elements of an array, the fields of a structure, key and value
     * of a dictionary entry, or the one content of a variant.
     */
    std::variant<std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
                 std::uint32_t, std::int64_t, std::uint64_t, double,
                 std::string, Members>
        data;

    bool operator==(const Value& other) const;

    /** The held text; nullptr for a value that is no text, path, signature. */
    const std::string* text() const
    {
        return std::get_if<std::string>(&data);
    }

    const Members& members() const
    {
        return std::get<Members>(data);
    }
};

void append(sd_bus_message* message, const Value& value);
void appendVariant(sd_bus_message* message, const Value& value);

/** Reads the value at the read position. File descriptors are refused. */
Value readValue(sd_bus_message* message);

/** All values up to the end of the message or of the entered container. */
std::vector<Value> readValues(sd_bus_message* message);

/** The form that a scenario uses for values. */
Json toJson(const Value& value);
Json toJson(const std::vector<Value>& values);

} // namespace morvath::sim
