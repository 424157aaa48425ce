// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace morvath::tests
{

/** What one call returned or raised, and what it left in its outputs. */
struct Effect
{
    std::string result;
    std::string outputs;

    bool operator==(const Effect&) const = default;
};

/**
 * What faults of single calls on the bus lead to: words, one per call; the
 * last one counts for all others.
 */
struct Results
{
    /** When a call is answered with an error or not at all. */
    const char* failed;
    /** When a call is answered with something else. */
    const char* confused;
    /** What -1 leaves in the outputs. */
    const char* unread = "untouched";
    /** Whether some of what fails is left out, with 0. */
    bool skips = false;
    /** The result on a platform without objects. */
    const char* absent = "-1";
};

/** An export with arguments that the default server knows. */
struct Export
{
    const char* name;
    std::function<Effect()> call;
    /** What becomes of calls with a null for each text, one at a time. */
    std::function<std::vector<std::string>()> nulls;
    Results results;
    /** It writes to the platform and has no outputs. */
    bool isSetter;
    /**
     * The outputs without a fault, of a setter what it sends; null where
     * another test checks them.
     */
    const char* usual;
};

/** All exports but those that release memory or cut a text. */
std::span<const Export> allExports();

} // namespace morvath::tests
