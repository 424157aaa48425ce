// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vontel::document
{

/** Keeps the order of keys. */
using Json = nlohmann::ordered_json;

/**
 * A value of a document that is wrong. Whoever has the document looks for it
 * there, so that nobody else needs to know where he is reading.
 */
struct Mistake : std::runtime_error
{
    Mistake(const Json& value, std::string_view message) :
        std::runtime_error(std::string(message)),
        value(&value)
    {}

    const Json* value;
    /** A JSON pointer further on, into what the value has become a part of. */
    std::string below{};
    /** Of an unknown key: those that are known. */
    std::vector<std::string> knownKeys{};
};

/** Where in its document a mistake is, as a JSON pointer. */
std::string placeOf(const Mistake& mistake, const Json& document);

/**
 * Parses a document. A key may stand only once in an object.
 * @throws Mistake  in what there is of the document by then
 */
void parse(std::string_view text, Json& document);

/** @throws Mistake  unless it is right */
void demand(bool isRight, const Json& value, std::string_view message);

// What follows throws Mistake when the value is something else.

const Json& asObject(const Json& json);
const Json& asList(const Json& json);
const std::string& asText(const Json& json);
bool asFlag(const Json& json);

/**
 * A whole number within limits; negative ones in two's complement.
 * @param[in] type  the D-Bus type that it is for, if any
 */
uint64_t asWhole(const Json& json, int64_t least, uint64_t most, char type = 0);

/** A flag that may only be left out or true. */
void checkTrue(const Json& json);

/** The member of an object; null without it. */
const Json* findMember(const Json& object, std::string_view key);

/** The same; without it a mistake. */
const Json& member(const Json& object, std::string_view key);

/** Does something with the member of an object, if there is one. */
void withMember(const Json& object, std::string_view key, const auto& action)
{
    if (const auto* found = findMember(object, key))
    {
        action(*found);
    }
}

/** The flag at a key; without it something else. */
bool flagAt(const Json& object, std::string_view key, bool otherwise);

/** The list at a key; without it an empty one. */
const Json& listAt(const Json& object, std::string_view key);

/** Every other key is a mistake. */
void allowOnly(const Json& object, const std::vector<std::string_view>& keys);

} // namespace vontel::document
