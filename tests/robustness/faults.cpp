// SPDX-License-Identifier: Apache-2.0
#include "raid/raid_library.hpp"
#include "robustness/allocations.hpp"
#include "robustness/exports.hpp"

#include <gtest/gtest.h>
#include <systemd/sd-bus.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace morvath::tests::faults
{

/** A kind of fault, and the words of what it leads to. */
struct Kind
{
    Json fault;
    decltype(&Results::failed) results;
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
    {{{"silent", true}}, &Results::failed, false, {10'000, 300'000, 3'000'000}},
};

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

/** What an export does when nothing fails. */
struct Usual
{
    const Export& one;
    Effect effect{};
    std::size_t calls = 0;
};

/** The property and the value in the last call, which sets it. */
std::string sentIn(const std::vector<sim::Call>& calls)
{
    const auto& arguments = *calls.back().arguments;
    return arguments[1].get<std::string>() + ' ' + arguments[2]["value"].dump();
}

std::vector<Usual> usualEffects()
{
    sim::Platform platform(Machine::smallServer().scenario());
    std::vector<Usual> all;
    for (const auto& one : allExports())
    {
        platform.clearCalls();
        const auto effect = one.call();
        const auto calls = platform.calls();
        all.push_back({one, effect, calls.size()});
        EXPECT_EQ(effect.result, "0") << one.name;
        if (one.usual)
        {
            EXPECT_EQ(one.isSetter ? sentIn(calls) : effect.outputs, one.usual)
                << one.name;
        }
    }
    return all;
}

/** What a call with the fault leads to. */
std::string resultOf(const Export& one, const Kind& kind, std::size_t call)
{
    std::istringstream words(one.results.*kind.results);
    std::string result;
    while (call-- > 0 && words >> result)
    {
        continue;
    }
    return result;
}

/** What is not as it must be while the call has the fault, and after it. */
std::string mistakeOf(const Usual& usual, const Kind& kind, std::size_t call)
{
    const auto& one = usual.one;
    const auto during = one.call();
    if (during.result != resultOf(one, kind, call) ||
        (during.result == "-1" && during.outputs != one.results.unread))
    {
        return "during: " + textOf(during);
    }
    if (kind.isLasting)
    {
        return {};
    }
    const auto after = one.call();
    return after == usual.effect ? "" : "after: " + textOf(after);
}

/** The exports that make so many calls, on a machine where one has the fault.
 */
void expectKnownResults(const std::vector<Usual>& all, const Kind& kind,
                        std::size_t call)
{
    static const auto server = Machine::smallServer().scenario();
    const auto scenario = withFault(server, {{"call", call}}, kind.fault);
    std::optional<sim::Platform> platform;
    for (const auto& usual : all)
    {
        if (call > usual.calls)
        {
            continue;
        }
        if (!platform || kind.isLasting)
        {
            platform.reset();
            platform.emplace(scenario);
        }
        std::string mistake;
        for (const auto timeOut : kind.timeOuts)
        {
            platform->clearCalls();
            setTimeOut(timeOut);
            mistake = mistakeOf(usual, kind, call);
            if (mistake.empty())
            {
                break;
            }
        }
        setTimeOut(0);
        EXPECT_EQ(mistake, "") << usual.one.name << kind.fault << call;
    }
}

TEST(BusFaults, OfOneCallHaveKnownResultsAndPass)
{
    const RaidLibrary raid(*sim::Scenario::standard().raid);
    const auto all = usualEffects();
    const auto most = std::ranges::max_element(all, {}, &Usual::calls)->calls;
    for (const auto& kind : kinds)
    {
        for (std::size_t call = 1; call <= most; ++call)
        {
            expectKnownResults(all, kind, call);
        }
    }
}

/** The effect while so many allocations fail, from that one on. */
Effect effectOf(const Export& one, unsigned first, unsigned count)
{
    allocations.firstToFail = first;
    allocations.toFail = count;
    auto effect = one.call();
    allocations.toFail = 0;
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
    // One that keeps no calls: there are too many.
    const sim::Platform platform(Machine::smallServer().scenario(),
                                 sim::Platform::Live{});
    for (const auto& one : allExports())
    {
        // Once before, for what libraries keep from their first call on.
        const auto usual = one.call();
        EXPECT_EQ(one.call(), usual) << one.name;
        const auto most = allocations.seen;
        for (unsigned first = 1; first <= most; ++first)
        {
            // Alone, and with what is tried in its place.
            for (const unsigned count : {1, 3})
            {
                SCOPED_TRACE(one.name + (' ' + std::to_string(first)) + '+' +
                             std::to_string(count));
                expectAllowed(one, effectOf(one, first, count), usual);
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
