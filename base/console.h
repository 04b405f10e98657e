#ifndef VESK_BASE_CONSOLE_H
#define VESK_BASE_CONSOLE_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* Console output in debug mode (-debug), nothing otherwise. Formats into 2048 bytes. */
VESK_API void debugf(const char *format, ...) VESK_PRINTF(1, 2);

VESK_END_DECLS

#ifdef VESK_INTERNAL
// Console text through the port (standard output; standard error in batch mode); dropped once the
// console is released.
void console_printf(const char *format, ...) VESK_PRINTF(1, 2);
void console_release();

void set_debug_mode(bool on);
bool debug_mode();
#endif

#endif
