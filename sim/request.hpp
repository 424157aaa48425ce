// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/value.hpp"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace morvath::sim
{

constexpr std::string_view propertiesInterface =
    "org.freedesktop.DBus.Properties";
constexpr std::string_view introspectableInterface =
    "org.freedesktop.DBus.Introspectable";
constexpr std::string_view peerInterface = "org.freedesktop.DBus.Peer";

/** What every object has without saying so. */
inline constexpr std::array standardInterfaces{
    introspectableInterface, peerInterface, propertiesInterface};

/** A method call, taken apart once. The texts live in the message. */
struct Request
{
    sd_bus_message* message;
    /** The name of the service that got it, however it was addressed. */
    std::string_view service;
    std::string_view destination;
    std::string_view path;
    std::string_view interface;
    std::string_view member;
    std::string_view signature;
    /** Absent when they cannot be represented. */
    std::optional<std::vector<Value>> arguments;

    Request(sd_bus_message* call, std::string_view serviceName);

    bool isFor(std::string_view interfaceName,
               std::string_view memberName) const
    {
        return interface == interfaceName && member == memberName;
    }

    bool isForProperties() const
    {
        return interface == propertiesInterface;
    }

    /** Answers InvalidArgs to arguments of other types. */
    void expectArguments(std::string_view types) const;

    /** The text of an argument; empty when it is none. */
    std::string_view text(std::size_t index) const;
};

} // namespace morvath::sim
