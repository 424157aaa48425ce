// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json_cursor.hpp"
#include "sim/sd_bus.hpp"

#include <memory>
#include <string_view>

namespace morvath::sim
{

/** A part of a document that lives as long as one of them is needed. */
using SharedJson = std::shared_ptr<const Json>;

/** Finds out whether the bus takes values, without a bus. */
class ValueCheck
{
  public:
    /** @throws ScenarioError  not a text that the bus carries */
    void text(const JsonCursor& json) const;

    /** @param[in] type  one complete type */
    void value(std::string_view type, const JsonCursor& value) const;

    /** Checks {"type": TYPE, "value": VALUE}, which may have more keys. */
    void typed(const JsonCursor& value) const;

    /** Checks what appendValues() takes. */
    void values(const JsonCursor& types, const JsonCursor& value) const;

  private:
    Message scratch() const;

    const Bus nothing = openNothing();
};

/**
 * Appends a value in the form that scenarios use.
 * @param[in] type  one complete type
 * @throws ScenarioError      the value is not of the type, with its place
 * @throws std::system_error  sd-bus has no memory or no room
 */
void append(sd_bus_message* message, std::string_view type,
            const JsonCursor& value);
void append(sd_bus_message* message, std::string_view type, const Json& value);

/**
 * Appends as many values as there are types: of one type the value itself,
 * of none nothing, of more a list of them.
 */
void appendValues(sd_bus_message* message, std::string_view types,
                  const JsonCursor& value);

/** Appends {"type": TYPE, "value": VALUE} as a variant; ignores other keys. */
void appendVariant(sd_bus_message* message, const JsonCursor& value);

/**
 * The value at the read position, in the form that scenarios use.
 * @throws std::system_error  also for a file descriptor, with EOPNOTSUPP
 */
Json readJson(sd_bus_message* message);

/** The variant at the read position as {"type": TYPE, "value": VALUE}. */
Json readJsonVariant(sd_bus_message* message);

/** All values up to the end of the message or container, as a list. */
Json readJsonList(sd_bus_message* message);

} // namespace morvath::sim
