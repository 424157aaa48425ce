// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/sd_bus.hpp"
#include "sim/value.hpp"

#include <chrono>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace morvath::sim
{

/** A service that does not answer any more: asking again only takes time. */
class ServiceLost : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/** The service does not know the object. */
class ObjectGone : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/** An object of one service. */
struct Source
{
    std::string path;
    std::string service;
};

/** The interfaces of all services of all objects, in byte order. */
using MappedObjects =
    std::map<std::string, std::map<std::string, std::vector<std::string>>>;

/**
 * Asks a live platform. An answer that is missing or cannot be used is thrown
 * as ServiceLost, ObjectGone or, for all other reasons, as BusError; any other
 * exception means that the bus is gone.
 */
class BusReader
{
  public:
    /** @param[in] address  empty: the bus of the environment */
    BusReader(const std::string& address, std::chrono::microseconds patience);

    MappedObjects mappedObjects();

    std::string introspection(const Source& source);

    /**
     * What GetAll answers.
     * @return a list of [NAME, PROPERTY], as a name can stand there twice;
     *         properties as in a scenario
     */
    Json properties(const Source& source, const std::string& interface);

    Json property(const Source& source, const std::string& interface,
                  const std::string& name);

  private:
    Value ask(const Source& source, std::string_view interface,
              const char* member, const std::vector<Value>& arguments,
              const char* answerType);

    Bus bus_;
    std::chrono::microseconds patience_;
};

} // namespace morvath::sim
