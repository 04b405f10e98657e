#ifndef VESK_FILEIO_VESK_OLD_H
#define VESK_FILEIO_VESK_OLD_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Model files of revisions below 11, in the older line vocabulary (docs/file-format.md). */

/* Reads such a file as readfile_vesk2 does; the first line that is not understood refuses all. */
VESK_API object_t *readfile_vesk_old2(const char *filename);

/* Saves the whole scene. Returns 1, or 0 after a message; the old file is then untouched. */
VESK_API int write_vesk_old(const char *filename);

VESK_END_DECLS

#endif
