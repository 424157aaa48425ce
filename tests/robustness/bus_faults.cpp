// SPDX-License-Identifier: Apache-2.0
#include "raid/raid_library.hpp"
#include "robustness/exports.hpp"

#include <gtest/gtest.h>
#include <systemd/sd-bus.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <sstream>
#include <string>
#include <utility>

namespace morvath::tests::bus_faults
{

const Json none;

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

/** What a call has without a fault, and the number of its calls on the bus. */
struct Usual
{
    explicit Usual(const Export& one)
    {
        const sim::Platform platform(serverWith(none, 0));
        effect = one.call();
        calls = platform.calls().size();
    }

    Effect effect;
    std::size_t calls;
};

/** A kind of fault, and the words of what it leads to. */
struct Kind
{
    Json fault;
    const char* Results::*results;
    /** A service that dies is gone for good. */
    bool isLasting = false;
};

std::string textOf(const Effect& effect)
{
    return effect.result + ' ' + effect.outputs;
}

/** What is not as it must be while that call has the fault, and after it. */
std::string mistakeOf(const Export& one, const Usual& usual, const Kind& kind,
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
    return after == usual.effect ? "" : "after: " + textOf(after);
}

template <typename Check>
void forEachCall(const Kind& kind, const Check& check)
{
    for (const auto& one : allExports())
    {
        const Usual usual(one);
        EXPECT_EQ(usual.effect.result, "0") << one.name;
        EXPECT_EQ(one.usual ? one.usual : usual.effect.outputs,
                  usual.effect.outputs)
            << one.name;
        std::istringstream words(one.results.*kind.results);
        std::string result;
        for (std::size_t call = 1; call <= usual.calls; ++call)
        {
            words >> result;
            EXPECT_EQ(check(one, usual, kind, call, result), "")
                << one.name << kind.fault << call;
        }
    }
}

class BusFaults : public ::testing::Test
{
  private:
    const RaidLibrary raid{*sim::Scenario::standard().raid};
};

TEST_F(BusFaults, OfOneCallHaveKnownResultsAndPass)
{
    const Json refusal{{"error", "com.example.Refused"}};
    forEachCall({refusal, &Results::failed}, mistakeOf);
    forEachCall({{{"reply", property("u", 1)}}, &Results::confused}, mistakeOf);
    forEachCall({{{"die", true}}, &Results::failed, true}, mistakeOf);
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

/** How long a call waits for its answer; as before when it goes. */
class TimeOut
{
  public:
    TimeOut()
    {
        sd_bus_default(&bus);
        sd_bus_get_method_call_timeout(bus, &before);
    }

    ~TimeOut()
    {
        set(before);
        sd_bus_unref(bus);
    }

    TimeOut(const TimeOut&) = delete;
    TimeOut& operator=(const TimeOut&) = delete;

    void set(uint64_t microseconds)
    {
        sd_bus_set_method_call_timeout(bus, microseconds);
    }

  private:
    sd_bus* bus = nullptr;
    uint64_t before = 0;
};

TEST_F(BusFaults, EndWithTheTimeOut)
{
    TimeOut timeOut;
    const auto mistakeInTime = [&timeOut](const auto&... arguments) {
        std::string mistake;
        // A short one saves time, but a busy machine may need a longer one.
        for (const uint64_t microseconds : {30'000, 300'000, 3'000'000})
        {
            timeOut.set(microseconds);
            mistake = mistakeOf(arguments...);
            if (mistake.empty())
            {
                break;
            }
        }
        timeOut.set(0);
        return mistake;
    };
    forEachCall({{{"silent", true}}, &Results::failed}, mistakeInTime);
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

} // namespace morvath::tests::bus_faults
