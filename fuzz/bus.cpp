// SPDX-License-Identifier: Apache-2.0
#include "fuzz/exports.hpp"

#include <cstdint>

/** Every export, on a bus that answers whatever the input says. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, std::size_t size)
{
    morvath::fuzz::run(morvath::fuzz::exports(),
                       morvath::fuzz::Input({bytes, size}));
    return 0;
}
