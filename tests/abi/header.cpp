// SPDX-License-Identifier: Apache-2.0
// First and alone: the header must need nothing before it.
#include "morvath.h"
#if __cplusplus >= 201703L
#include "morvath.hpp"
#endif

int main()
{
    PsuInfoEntry entry{};
    freePsuInfoEntry(&entry);
#if __cplusplus >= 201703L
    const PropertyValue value;
    const SubTree tree;
    const morvath::Records<PsuInfoEntry> none;
    return value.index() == 0 && tree.empty() && none.empty() ? 0 : 1;
#endif
}
