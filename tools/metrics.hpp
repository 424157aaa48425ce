// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "table.hpp"

#include <functional>
#include <list>
#include <string>
#include <string_view>
#include <vector>

namespace morvath::tools
{

/** A metric and those of its samples that were not written yet. */
struct Metric
{
    std::string name;
    std::string help;
    bool isShared;
    std::string samples{};

    /** Labels are as label() gives them, with commas in between. */
    void add(std::string_view labels, double value);
};

/** What is printed for Prometheus: metrics with their samples. */
class Exposition
{
  public:
    /**
     * The metric of that name; the help counts when it is new. Several tables
     * add to one that is shared.
     */
    Metric& metric(const std::string& name, std::string_view help,
                   bool isShared = false);

    /**
     * Takes the samples so far, with those of shared metrics or without: only
     * in one place are they in the form that Prometheus asks for.
     */
    std::string take(bool withShared);

  private:
    std::list<Metric> metrics;
};

/** A label; the value can be any bytes and of any length. */
std::string label(std::string_view name, std::string_view value);

/**
 * Adds what can be read of a table, or of the host, the system or the firmware.
 * @param[in] prepare  as read() has it
 * @return what of a table could not be read
 * @throws std::exception  nothing could be read
 */
std::vector<Failure> addMetrics(std::string_view table, Exposition& exposition,
                                const std::function<void()>& prepare);

} // namespace morvath::tools
