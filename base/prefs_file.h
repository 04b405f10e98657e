#ifndef VESK_BASE_PREFS_FILE_H
#define VESK_BASE_PREFS_FILE_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* Sets the defaults, then reads the settings file. Called once, before the interpreter exists. */
VESK_API void init_prefs(void);

/* Writes the settings file, with the windows' present places and sizes; the old file survives
   every failure. Command "save_settings". */
VESK_API void save_prefs(void);

/* Name of the settings file; valid until the next call. */
VESK_API const char *prefs_get_prefs_filename(void);

VESK_END_DECLS

#endif
