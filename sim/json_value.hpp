// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/sd_bus.hpp"
#include "simulation/document.hpp"

#include <memory>
#include <string>
#include <string_view>

namespace morvath::sim
{

// A scenario is read like the RAID section that it contains.
using namespace vontel::document;

/** A part of a document that lives as long as one of them is needed. */
using SharedJson = std::shared_ptr<const Json>;

/**
 * Appends a value in the form that scenarios use.
 * @param[in] type  one complete type
 * @throws Mistake            the value is not of the type
 * @throws std::system_error  sd-bus has no memory or no room
 */
void append(sd_bus_message* message, std::string_view type, const Json& value);

/**
 * Puts a value of a basic type where sd-bus itself can read it; its text stays
 * where it is. Returns false for another type.
 * @param[in] memory  of eight bytes
 */
bool storeBasic(std::string_view type, const Json& value, void* memory);

/**
 * Appends as many values as there are types: of one type the value itself,
 * of none nothing, of more a list of them.
 */
void appendValues(sd_bus_message* message, std::string_view types,
                  const Json& value);

// What follows finds out without a bus what it takes, and throws Mistake.

void checkValue(std::string_view type, const Json& value);

/** Checks {"type": TYPE, "value": VALUE}, which may have more keys. */
void checkVariant(const Json& json);

/** Checks what appendValues() takes. */
void checkValues(const Json& types, const Json& value);

/** A kind of names on the bus. */
struct NameKind
{
    int (*isValid)(const char* name);
    const char* description;
};

constexpr NameKind serviceName{sd_bus_service_name_is_valid, "a bus name"};
constexpr NameKind pathName{sd_bus_object_path_is_valid, "an object path"};
constexpr NameKind interfaceName{sd_bus_interface_name_is_valid,
                                 "an interface name"};
constexpr NameKind memberName{sd_bus_member_name_is_valid, "a member name"};

void checkName(const NameKind& kind, const std::string& name,
               const Json& place);

/** A text that is such a name. */
const std::string& asName(const NameKind& kind, const Json& json);

/**
 * The value at the read position, in the form that scenarios use.
 * @throws std::system_error  also for a file descriptor, with EOPNOTSUPP
 */
Json readJson(sd_bus_message* message);

/** All values up to the end of the message or container, as a list. */
Json readJsonList(sd_bus_message* message);

} // namespace morvath::sim
