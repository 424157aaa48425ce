// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "base/c_memory.hpp"
#include "bus/message.hpp"

#include <cstdint>
#include <vector>

namespace morvath
{

constexpr auto propertiesInterface = "org.freedesktop.DBus.Properties";

/** Where a property is: the four texts that every accessor binds. */
struct Property
{
    const char* service;
    const char* path;
    const char* interface;
    const char* name;
};

// What the exported functions do, for a binding: 0, or -1 with the output as
// it was. A property of another type raises.

/** A text of 1 to 199 bytes; any other leaves the output as it was, too. */
int32_t readText(const Property& property, CText& value);
int32_t readText(const Property& property, char** value);

/** Texts that stand in the reply. */
struct TextList
{
    sdbusplus::message_t reply;
    std::vector<const char*> texts;
};

int32_t readTexts(const Property& property, TextList& list);
int32_t readByte(const Property& property, uint8_t* value);
int32_t readFlag(const Property& property, uint8_t* value);
int32_t writeText(const Property& property, const char* value);
int32_t writeNumber(const Property& property, uint64_t value);

/** The texts up to the end of the array that the reader stands before. */
std::vector<const char*> readTexts(ReplyReader& reader);

/** A request for or with a property, complete but for a value. */
Request propertyCall(const char* member, const Property& property);

} // namespace morvath
