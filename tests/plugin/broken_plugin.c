/* Faults while it initialises (FAULTS), refuses to (REFUSES), or lacks its exit entry point. */

#include "plugin/vesk.h"

__attribute__((no_sanitize("undefined"))) int VESKPluginInit(void)
{
#ifdef FAULTS
    volatile int *volatile nowhere = 0;
    *nowhere = 1;
#endif
#ifdef REFUSES
    return 0;
#else
    return 1;
#endif
}

#if defined FAULTS || defined REFUSES
void VESKPluginExit(void) {}
#endif
