// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"

#include <stddef.h>

/* Needs the library and calls nothing of it. */
int main(void)
{
    void (*volatile needed)(PsuInfoEntry *) = freePsuInfoEntry;
    return needed == NULL;
}
