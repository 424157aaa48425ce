// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json_value.hpp"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace morvath::sim
{

struct Interface;
struct Scenario;

/** Which calls a fault is for: an empty text or a zero means any. */
struct Condition
{
    std::string service{};
    std::string path{};
    std::string interface = {};
    std::string member{};
    std::string property{};
    uint32_t call = 0;
};

enum class Effect
{
    error,
    delay,
    reply,
    silence,
    death,
    missing,
    vanished,
};

struct Fault
{
    /** The place in its document, such as "/faults/0". */
    std::string place;
    Condition when{};
    Effect then{};
    /** What else the effect says, in the form of the document, checked. */
    SharedJson what{};
    /** The calls that the condition is for, so far. */
    uint32_t calls = 0;
    bool used = false;
};

/**
 * Reads the faults of a scenario that is read as far as its objects. One that
 * no call to the machine could meet is a mistake.
 */
std::vector<Fault> readFaults(const Json& list, const SharedJson& document,
                              const Scenario& scenario);

/** A method call as conditions see it. */
struct CallKeys
{
    std::string_view service;
    std::string_view path;
    std::string_view interface;
    /** Empty: it may be any. */
    std::string_view member{};
    /** Of a call that concerns properties. */
    std::string_view propertyInterface{};
    std::string_view property{};
};

/** What becomes of a call. */
struct Decision
{
    /** What happens to it; null for an answer. */
    const Fault* fault = nullptr;
    /** The properties that are not there for it. */
    std::vector<const Fault*> missing{};

    bool isMissing(std::string_view interface, std::string_view property) const;
};

/** The faults of a running platform, with their counts of calls. */
class Faults
{
  public:
    explicit Faults(std::vector<Fault> faults) : all(std::move(faults)) {}

    bool empty() const noexcept { return all.empty(); }

    /**
     * All missing properties count; of the other faults the first decides.
     * @param[in] interfaces  those of the object; null when there is none
     */
    Decision decide(const CallKeys& call,
                    const std::vector<Interface>* interfaces);

    /** Counts the calls from none again. */
    void restart();

    /** The places of the faults that no call has met. */
    std::vector<std::string> unused() const;

  private:
    std::vector<Fault> all;
};

} // namespace morvath::sim
