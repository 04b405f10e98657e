#ifndef VESK_FILEIO_TEXT_OBJECTS_H
#define VESK_FILEIO_TEXT_OBJECTS_H

#include "base/types.h"
#include "model/object.h"

VESK_BEGIN_DECLS

/* Texts made of the glyphs of a font: a model file whose objects are named by one character each,
   their centres at the left end of the base line. */

/* Loads the font in place of the one before. A name that is not there is looked for in the home
   directory. Returns 1, or 0: there is no font then. */
VESK_API int load_font_object(const char *filename);

/* The first object below `top`, in tree order, of exactly that name; or null. */
VESK_API object_t *find_named_object(object_t *top, const char *name);

/* A new object named after the text (UTF-8) that holds a copy of each character's glyph; line feeds
   start new lines. Loads the font that the preference fontpath names when that is not the loaded
   one. Characters without a glyph give a console line. Null, after a console line: no font, or no
   glyph at all. The caller owns the object. */
VESK_API object_t *create_text(const char *text);

/* Commands "add_text" and "create_text": such an object under the world, selected; undo "add text". */
VESK_API void add_text(const char *text);

VESK_END_DECLS

#endif
