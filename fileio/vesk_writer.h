#ifndef VESK_FILEIO_VESK_WRITER_H
#define VESK_FILEIO_VESK_WRITER_H

#include "model/object.h"

#include <stdio.h>

VESK_BEGIN_DECLS

/* Saves the whole scene and makes the file the current one. Always returns 1: failures are told in
   a message box (write_vesk_object returns them). The file is replaced only when it is complete. */
VESK_API int write_vesk(const char *filename);

/* Saves an object with its descendants. Returns 1, or 0 after a message box; the old file is then
   untouched. */
VESK_API int write_vesk_object(const char *filename, object_t *object);

/* Saves the whole scene in the older line vocabulary (docs/file-format.md). Returns 1 or 0. */
VESK_API int write_vesk_old(const char *filename);

/* Writes a text in double quotes, with a backslash before each double quote and backslash.
   Returns 1. */
VESK_API int output_string(FILE *stream, const char *text);

VESK_END_DECLS

#ifdef VESK_INTERNAL
#include <string>
// What write_vesk_object writes, as a text; tells nothing.
std::string vesk_object_text(object_t *object);
#endif

#endif
