// SPDX-License-Identifier: Apache-2.0
/* Lists the power supplies of the platform. */
#include <morvath.h>

#include <stdio.h>
#include <stdlib.h>

/* The platform may lack any property. */
static const char *shown(const char *text)
{
    return text != NULL ? text : "n/a";
}

int main(void)
{
    PsuInfoEntry *supplies = NULL;
    int32_t count = 0;
    const int32_t code = getPsuTableInfo(&supplies, &count);
    if (code != 0)
    {
        fprintf(stderr, "no power supplies: code %d\n", (int)code);
        return EXIT_FAILURE;
    }
    for (int32_t i = 0; i < count; ++i)
    {
        PsuInfoEntry *supply = &supplies[i];
        printf("%s: %s %s, %s W\n", shown(supply->name),
               shown(supply->manufacturer), shown(supply->partNumber),
               shown(supply->rating));
        freePsuInfoEntry(supply);
    }
    free(supplies);
    return EXIT_SUCCESS;
}
