// SPDX-License-Identifier: Apache-2.0
#include "raid/raid_library.hpp"
#include "robustness/allocations.hpp"
#include "robustness/exports.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace morvath::tests::allocation_faults
{

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
            for (unsigned count = 1; count <= 3; ++count)
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

} // namespace morvath::tests::allocation_faults
