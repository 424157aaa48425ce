// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/call_log.hpp"
#include "sim/scenario.hpp"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace morvath::sim
{

/** Serves a scenario on a bus, on a thread and connections of its own. */
class Platform
{
  public:
    /**
     * Returns when all names are owned and served.
     * @param[in] busAddress  empty: the bus that the environment names, as
     *                        sd_bus_open finds it
     * @param[in] sink        receives the calls instead of calls()
     * @throws std::system_error  no bus, or a name is taken
     */
    explicit Platform(const Scenario& scenario,
                      const std::string& busAddress = {}, CallSink sink = {});

    /** Afterwards all names are free again. */
    ~Platform();

    Platform(const Platform&) = delete;
    Platform& operator=(const Platform&) = delete;

    std::vector<Call> calls() const;
    void clearCalls();

    /**
     * The present value, in the form that scenarios use.
     * @throws std::out_of_range  there is no such property
     */
    nlohmann::ordered_json property(const std::string& service,
                                    const std::string& path,
                                    const std::string& interface,
                                    const std::string& name) const;

    /** Objects, counted once per service that publishes them. */
    std::size_t objectCount() const;

    /** Services, the object mapper not among them. */
    std::size_t serviceCount() const;

    /** A descriptor that becomes readable when the bus goes away. */
    int busLostDescriptor() const;

  private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

} // namespace morvath::sim
