#ifndef VESK_BASE_HOME_H
#define VESK_BASE_HOME_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* The home directory: scripts, plug-ins, icons, font, default settings. Owned by the program. */
VESK_API const char *vesk_get_vesk_homedir(void);

VESK_END_DECLS

#ifdef VESK_INTERNAL
// A linked script text: its address is handed to the interpreter, which may replace the text.
char **vesk_homedir_address();
void vesk_set_homedir(const char *directory);
#endif

#endif
