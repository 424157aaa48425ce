// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json_value.hpp"

#include <chrono>
#include <functional>
#include <string>

namespace morvath::sim
{

/** One method call that reached a service. */
struct Call
{
    std::chrono::system_clock::time_point time;
    /** The caller's unique name. */
    std::string caller;
    /** The destination as the caller wrote it. */
    std::string service;
    std::string path;
    std::string interface;
    std::string member;
    /** A list; null when the arguments cannot be shown. */
    SharedJson arguments;
    /** "reply", the name of an error, or what a fault did instead. */
    std::string outcome;
    /** The place of the fault in the scenario; empty without one. */
    std::string fault;
};

/** The call as a line of a log. */
std::string toLine(const Call& call);

/** Receives calls as they come, on the thread that serves them. */
using CallSink = std::function<void(const Call&)>;

/** Takes a method call apart. */
Call callOf(sd_bus_message* message);

} // namespace morvath::sim
