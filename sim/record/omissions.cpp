// SPDX-License-Identifier: Apache-2.0
#include "sim/record/omissions.hpp"

#include <cstdio>

namespace morvath::sim
{

void Omissions::tell(const std::string& what, const std::string& why)
{
    any_ = true;
    std::fprintf(stderr, "morvath-sim: left out: %s: %s\n", what.c_str(),
                 why.c_str());
}

} // namespace morvath::sim
