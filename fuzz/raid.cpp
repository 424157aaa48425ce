// SPDX-License-Identifier: Apache-2.0
#include "fuzz/exports.hpp"

#include <cstdint>

/** What asks the RAID management library, which the input fills likewise. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, std::size_t size)
{
    morvath::fuzz::run(morvath::fuzz::raidExports(),
                       morvath::fuzz::Input({bytes, size}));
    return 0;
}
