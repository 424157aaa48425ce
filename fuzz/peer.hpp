// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "fuzz/input.hpp"

namespace morvath::fuzz
{

/**
 * Lets the platform at the other end of the library's connection answer from
 * the input, which says first how many calls find it working as yet. When this
 * returns nothing of an earlier call goes on any more.
 */
void answerFrom(Input* input);

/** What it answers from. */
Input& answers();

} // namespace morvath::fuzz
