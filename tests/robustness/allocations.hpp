// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace morvath::tests
{

/**
 * The allocations of a thread, those inside of libraries too, while a window
 * is open. What other threads allocate does not matter.
 */
struct Allocations
{
    bool areCounted = false;
    /** In this window or the latest. */
    unsigned seen = 0;
    /** Counted from 1. */
    unsigned firstToFail = 0;
    unsigned toFail = 0;
};

constinit inline thread_local Allocations allocations;

class AllocationWindow
{
  public:
    AllocationWindow()
    {
        allocations.seen = 0;
        allocations.areCounted = true;
    }

    ~AllocationWindow() { allocations.areCounted = false; }

    AllocationWindow(const AllocationWindow&) = delete;
    AllocationWindow& operator=(const AllocationWindow&) = delete;
};

} // namespace morvath::tests
