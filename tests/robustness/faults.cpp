// SPDX-License-Identifier: Apache-2.0
#include "raid/raid_library.hpp"
#include "robustness/allocations.hpp"
#include "robustness/exports.hpp"

#include <gtest/gtest.h>
#include <systemd/sd-bus.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace morvath::tests::faults
{

/** A kind of fault, and the words of what it leads to. */
struct Kind
{
    Json fault;
    const char* Results::*results;
    /** A service that dies is gone for good. */
    bool isLasting = false;
    /** In microseconds, tried until one suffices; 0 is sd-bus's own. */
    std::vector<uint64_t> timeOuts{0};
};

const Kind kinds[]{
    {{{"error", "com.example.Refused"}}, &Results::failed},
    {{{"reply", property("u", 1)}}, &Results::confused},
    {{{"die", true}}, &Results::failed, true},
    // A short one saves time, but a busy machine may need a longer one.
    {{{"silent", true}}, &Results::failed, false, {30'000, 300'000, 3'000'000}},
};

/** The small server with a fault at one call; made once for all exports. */
const sim::Scenario& serverWith(const Json& fault, std::size_t call)
{
    static std::map<std::pair<Json, std::size_t>, sim::Scenario> known;
    const std::pair key(fault, call);
    const auto place = known.find(key);
    if (place != known.end())
    {
        return place->second;
    }
    auto machine = Machine::smallServer();
    if (call != 0)
    {
        machine.fault({{"call", call}}, fault);
    }
    return known.emplace(key, machine.scenario()).first->second;
}

/** How long each call of the library waits for its answer. */
void setTimeOut(uint64_t microseconds)
{
    sd_bus* bus = nullptr;
    sd_bus_default(&bus);
    sd_bus_set_method_call_timeout(bus, microseconds);
    sd_bus_unref(bus);
}

std::string textOf(const Effect& effect)
{
    return effect.result + ' ' + effect.outputs;
}

/** What is not as it must be while that call has the fault, and after it. */
std::string mistakeOf(const Export& one, const Effect& usual, const Kind& kind,
                      std::size_t call, const std::string& result)
{
    const sim::Platform platform(serverWith(kind.fault, call));
    const auto during = one.call();
    if (during.result != result ||
        (result == "-1" && during.outputs != one.results.unread))
    {
        return "during: " + textOf(during);
    }
    if (kind.isLasting)
    {
        return {};
    }
    const auto after = one.call();
    return after == usual ? "" : "after: " + textOf(after);
}

void expectKnownResults(const Export& one, const Effect& usual,
                        std::size_t calls, const Kind& kind)
{
    std::istringstream words(one.results.*kind.results);
    std::string result;
    for (std::size_t call = 1; call <= calls; ++call)
    {
        words >> result;
        std::string mistake;
        for (const auto timeOut : kind.timeOuts)
        {
            setTimeOut(timeOut);
            mistake = mistakeOf(one, usual, kind, call, result);
            if (mistake.empty())
            {
                break;
            }
        }
        setTimeOut(0);
        EXPECT_EQ(mistake, "") << one.name << kind.fault << call;
    }
}

TEST(BusFaults, OfOneCallHaveKnownResultsAndPass)
{
    const RaidLibrary raid(*sim::Scenario::standard().raid);
    for (const auto& one : allExports())
    {
        Effect usual;
        std::size_t calls = 0;
        {
            const sim::Platform platform(serverWith({}, 0));
            usual = one.call();
            calls = platform.calls().size();
        }
        EXPECT_EQ(usual.result, "0") << one.name;
        EXPECT_EQ(one.usual ? one.usual : usual.outputs, usual.outputs)
            << one.name;
        for (const auto& kind : kinds)
        {
            expectKnownResults(one, usual, calls, kind);
        }
    }
}

/** The effect while so many allocations fail, from the first on. */
Effect effectOf(const Export& one, const AllocationFaults& faults)
{
    AllocationWindow::plan(faults);
    auto effect = one.call();
    AllocationWindow::plan({});
    return effect;
}

void expectAllowed(const Export& one, const Effect& effect, const Effect& usual)
{
    const std::set<std::string> results{"0", "-1", "-2", "no-memory",
                                        "bus-error"};
    EXPECT_TRUE(results.contains(effect.result)) << effect.result;
    if (effect.result == "0" && !one.results.skips)
    {
        EXPECT_EQ(effect.outputs, usual.outputs);
    }
    if (effect.result == "-1")
    {
        EXPECT_EQ(effect.outputs, one.results.unread);
    }
}

TEST(AllocationFaults, AreToldAndPass)
{
    const RaidLibrary raid(*sim::Scenario::standard().raid);
    const sim::Platform platform(Machine::smallServer().scenario());
    for (const auto& one : allExports())
    {
        // Once before, for what libraries keep from their first call on.
        const auto usual = effectOf(one, {});
        EXPECT_EQ(one.call(), usual) << one.name;
        const auto allocations = AllocationWindow::seen();
        for (unsigned first = 1; first <= allocations; ++first)
        {
            // Alone, and with what is tried in its place.
            for (const unsigned count : {1, 3})
            {
                SCOPED_TRACE(one.name + (' ' + std::to_string(first)) + '+' +
                             std::to_string(count));
                expectAllowed(one, effectOf(one, {first, count}), usual);
                // After a call that failed sd-bus allocates otherwise, and the
                // last allocations would not be reached.
                EXPECT_EQ(one.call(), usual);
            }
        }
        EXPECT_EQ(one.call(), usual) << one.name;
    }
}

TEST(Platform, WithoutObjectsIsTold)
{
    const RaidLibrary raid(noManager);
    const sim::Platform platform(Machine().scenario());
    for (const auto& one : allExports())
    {
        const auto effect = one.call();
        EXPECT_EQ(effect.result, one.results.absent) << one.name;
        EXPECT_TRUE(effect.result != "-1" ||
                    effect.outputs == one.results.unread)
            << one.name;
    }
}

TEST(NullTexts, RaiseBeforeAnythingIsSent)
{
    sim::Platform platform(Machine::smallServer().scenario());
    for (const auto& one : allExports())
    {
        for (const auto& outcome : one.nulls())
        {
            EXPECT_EQ(outcome, nullText) << one.name;
        }
    }
    EXPECT_EQ(platform.calls().size(), 0u);
}

} // namespace morvath::tests::faults
