#ifndef VESK_BASE_FILENAME_H
#define VESK_BASE_FILENAME_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* File names are split at "/" and "\" and joined with "/". Returned texts stay valid until the
   same function is called again. */

/* The directory part without its last separator ("/" for a file in the root); "" for none. */
VESK_API const char *vesk_filename_get_path(const char *filename);

/* The part after the last separator. */
VESK_API const char *vesk_filename_get_file(const char *filename);

/* `path` + "/" + `file`; just `file` when the path is empty. */
VESK_API const char *vesk_filename_concat_path_file(const char *path, const char *file);

/* Turns every backslash into "/", in place. Returns its argument. */
VESK_API char *vesk_unbackslash_string(char *text);

/* The text from the last dot on, a pointer into the argument; null without a dot. The dot may be
   in a directory's name. */
VESK_API const char *string_get_suffix(const char *filename);

/* 1 when something of that name exists (a folder too), else 0. */
VESK_API int vesk_file_exists(const char *filename);

VESK_END_DECLS

#ifdef VESK_INTERNAL
/* "/..." or "\..." or a drive letter: not joined to a folder. */
bool filename_is_absolute(const char *filename);
#endif

#endif
