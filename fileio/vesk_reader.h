#ifndef VESK_FILEIO_VESK_READER_H
#define VESK_FILEIO_VESK_READER_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Reads a model file into a new tree that nothing is linked to yet, normals computed, and makes it
   the current file. Returns its top object (the caller owns it), or null: the file cannot be
   opened, is none of ours or of a newer version (after a message box), or holds no object. Faulty
   lines are skipped with a line on the debug output; their number and the first of them stand on the
   status line. Palette entries are appended as needed. Touches neither world, selection, undo nor views. */
VESK_API object_t *readfile_vesk2(const char *filename);

/* The importer entry of the native format. */
VESK_API object_t *vesk_import_vesk(const char *filename);

VESK_END_DECLS

#ifdef VESK_INTERNAL
#include <string>
#include <string_view>
// The same as readfile_vesk2 for a file that is only a part of something: the current file stays.
object_t *vesk_read_model(const std::string &filename);

// The model that a text holds, as readfile_vesk2 reads a file's; the current file stays and there
// are no messages. Null when it is none, of another revision, or empty.
object_t *vesk_object_of_text(std::string_view text);
#endif

#endif
