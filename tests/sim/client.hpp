// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/sd_bus.hpp"
#include "sim/value.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace morvath::tests
{

using sim::Json;
using sim::Value;

struct Reply
{
    /** The error's name and text; empty after success. */
    std::string error;
    std::string message;
    /** The first value; the content of a variant, or the error's name. */
    Json value;
};

constexpr std::uint64_t patience = 20'000'000;

/** A bus client of its own, the library not involved. */
class Client
{
  public:
    Reply call(const std::string& service, const std::string& path,
               const std::string& interface, const std::string& member,
               const std::vector<Value>& arguments = {});

    Reply get(const std::string& service, const std::string& path,
              const std::string& interface, const std::string& name);
    Reply getAll(const std::string& service, const std::string& path,
                 const std::string& interface);
    Reply set(const std::string& service, const std::string& path,
              const std::string& interface, const std::string& name,
              const Value& value);
    Reply mapper(const std::string& member,
                 const std::vector<Value>& arguments);

    sd_bus* bus()
    {
        return bus_.get();
    }

  private:
    const sim::Bus bus_ = sim::openBus("");
};

Value text(const std::string& text);
Value texts(const std::vector<std::string>& texts);

} // namespace morvath::tests
