/* Notes in the file that VESK_TEST_EXITS names when its exit entry point is called; or ends the whole
   process (LEAVES). */

#include "plugin/vesk.h"

#include <stdio.h>
#include <stdlib.h>

int VESKPluginInit(void)
{
#ifdef LEAVES
    exit(5);
#endif
    return 1;
}

__attribute__((no_sanitize("undefined"))) void VESKPluginExit(void)
{
    const char *name = getenv("VESK_TEST_EXITS");
    FILE *file = name ? fopen(name, "a") : 0;
    if (file) {
        fputs(WHICH "\n", file);
        fclose(file);
    }
#ifdef FAULTS
    volatile int *volatile nowhere = 0;
    *nowhere = 1;
#endif
}
