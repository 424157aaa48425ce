// SPDX-License-Identifier: Apache-2.0
// First and alone: the header must need nothing before it.
#include "morvath.h"

int main()
{
    PsuInfoEntry entry{};
    freePsuInfoEntry(&entry);
    const PropertyValue value;
    const SubTree tree;
    return value.index() == 0 && tree.empty() ? 0 : 1;
}
