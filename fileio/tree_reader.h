#ifndef VESK_FILEIO_TREE_READER_H
#define VESK_FILEIO_TREE_READER_H

#include "base/file_text.h"
#include "model/object.h"

// Reads the objects of a model file of the present revision. Faulty lines are skipped and complained
// of. The nested object blocks are kept on a stack, so that any depth up to the limit loads.
//   first      the place in `text` after the file's first word.
//   filename   names of textures are relative to it.
//   moved_bar  whether the progress bar was moved.
// Returns the top object, without normals, or null when there is none.
object_t *read_tree(const file_text &text, const char *first, const char *filename,
                    bool *moved_bar);

#endif
