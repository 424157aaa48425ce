// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace morvath
{

[[noreturn]] void raiseMissing();

/**
 * What must not be null: a text that a caller passes, or a cell that has to be
 * converted. A null raises std::logic_error, with the text that callers know
 * from the standard library.
 */
template <typename T>
T* required(T* pointer)
{
    if (!pointer)
    {
        raiseMissing();
    }
    return pointer;
}

} // namespace morvath
