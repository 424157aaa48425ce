// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json_cursor.hpp"
#include "sim/value.hpp"

#include <chrono>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace morvath::sim
{

/** Which calls a fault is for: an empty text or a zero means any. */
struct FaultCondition
{
    std::string service;
    std::string path;
    std::string interface;
    std::string member;
    std::string property;
    unsigned call = 0;
};

struct ErrorReply
{
    std::string name;
    std::string message;
};

struct Delay
{
    std::chrono::milliseconds time;
};

struct Silence
{};

struct FixedReply
{
    /** Absent for a reply without a body. */
    std::optional<Value> body;
};

struct Death
{};

struct MissingProperty
{};

struct VanishedObject
{};

using FaultEffect = std::variant<ErrorReply, Delay, Silence, FixedReply, Death,
                                 MissingProperty, VanishedObject>;

struct Fault
{
    FaultCondition when;
    FaultEffect then;
};

std::vector<Fault> faultsFromJson(const JsonCursor& json);

} // namespace morvath::sim
