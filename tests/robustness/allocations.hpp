// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace morvath::tests
{

/** Which allocations fail while a window is open, counted from 1. */
struct AllocationFaults
{
    unsigned first = 0;
    unsigned count = 0;
};

/**
 * Counts all allocations of the thread, those inside of libraries too, and
 * fails some of them. What other threads allocate does not matter.
 */
class AllocationWindow
{
  public:
    AllocationWindow();
    ~AllocationWindow();

    AllocationWindow(const AllocationWindow&) = delete;
    AllocationWindow& operator=(const AllocationWindow&) = delete;

    /** For all windows from now on. */
    static void plan(const AllocationFaults& faults);

    /** How many there were in the latest window. */
    static unsigned seen();
};

} // namespace morvath::tests
