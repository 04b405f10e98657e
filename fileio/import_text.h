#ifndef VESK_FILEIO_IMPORT_TEXT_H
#define VESK_FILEIO_IMPORT_TEXT_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Triangle files: nine numbers a triangle, its three corners, and perhaps a colour 0xRRGGBB after
   them; a line that begins with a word starts a new object of that name; "#" begins a comment. */
VESK_API object_t *vesk_import_aliastri(const char *filename);

/* Vector files: a point on each line, two or three numbers; a line is drawn through them. An empty
   line, a word or a number alone (how many points follow) begins the next one. A line whose ends meet
   is closed. */
VESK_API object_t *vesk_import_vector(const char *filename);

VESK_END_DECLS

#endif
