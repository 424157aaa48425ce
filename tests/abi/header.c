// SPDX-License-Identifier: Apache-2.0
/* First and alone: the header must need nothing before it. */
#include "morvath.h"

/* A caller in plain C; no bus is needed to release a record. */
int main(void)
{
    PsuInfoEntry entry = {0};
    freePsuInfoEntry(&entry);
    return entry.name == 0 ? 0 : 1;
}
