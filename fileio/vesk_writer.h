#ifndef VESK_FILEIO_VESK_WRITER_H
#define VESK_FILEIO_VESK_WRITER_H

#include "model/object.h"

#include <stdio.h>

VESK_BEGIN_DECLS

/* Saves the whole scene and makes the file the current one. Always returns 1: a failure gives a
   message box (write_vesk_object returns them). The file is replaced only when it is complete. */
VESK_API int write_vesk(const char *filename);

/* Saves an object with its descendants; texture names are relative to the current file. Returns 1,
   or 0 after a message box; the old file is then untouched. */
VESK_API int write_vesk_object(const char *filename, object_t *object);

/* Writes a text in double quotes, with a backslash before each double quote and backslash.
   Returns 1. */
VESK_API int output_string(FILE *stream, const char *text);

VESK_END_DECLS

#ifdef VESK_INTERNAL
#include <string>
// The same with texture names relative to `texture_base`, a file name; "" for names in full.
int vesk_write_model(const std::string &filename, object_t *object,
                     const std::string &texture_base);
// The text that it writes, with textures' names in full; no messages.
std::string vesk_object_text(object_t *object);
#endif

#endif
